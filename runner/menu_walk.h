#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/accessibility.h"

/// Steps through an application's menus by their titles. Main thread; each call waits for that application.
namespace keyvora::menu_walk {

/// The menu bar of an application's root element; null when it cannot be read.
platform::ElementRef menuBar(platform::Element& application);

/// The children of an element; none when they cannot be read or are not a list of elements.
std::optional<std::vector<platform::ElementRef>> children(platform::Element& element);

/// The first element with this title. An element without a title is replaced by its children: it is the
/// container between a menu's title and its items. Null when there is no such element.
platform::ElementRef find(const std::vector<platform::ElementRef>& elements, std::string_view title);

}  // namespace keyvora::menu_walk

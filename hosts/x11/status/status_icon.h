#pragma once

#include <cairo.h>

#include <string>
#include <string_view>

namespace keyvora::x11 {

/// The parts of an item's title: the option sign, and the letters typed after it.
struct StatusTitle {
  /// Parses "⌥", "⌥ " (armed) and "⌥ HF"; any other text counts as letters.
  static StatusTitle of(std::string_view title);

  friend bool operator==(const StatusTitle&, const StatusTitle&) = default;

  bool isArmed = false;
  std::string letters;
};

/// Draws the item into a slot that is too narrow for its text: the white sign on a dark background; when
/// armed, the black sign on a white background with a dark edge; with letters, as many of the last ones as
/// are legible, without the sign. Its own background makes it legible on light and dark panels. `width` and
/// `height` are in units of the context, whose device scale is the screen's. Opens fonts only for letters.
/// Main thread.
void drawStatusIcon(cairo_t* context, const StatusTitle& title, double width, double height);

/// Opens the fonts for the letters, which takes a second on a very busy machine: longer than the tap waits
/// for a verdict. Main thread.
void openFonts();

}  // namespace keyvora::x11

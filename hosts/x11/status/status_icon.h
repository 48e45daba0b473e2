#pragma once

#include <cairo.h>

#include <string>
#include <string_view>

namespace keyvora::x11 {

/// What a title of the item says, taken apart: the option sign, and the letters that were typed after it.
struct StatusTitle {
  /// Reads "⌥", "⌥ " (armed) and "⌥ HF"; of any other text, all of it is letters.
  static StatusTitle of(std::string_view title);

  friend bool operator==(const StatusTitle&, const StatusTitle&) = default;

  bool isArmed = false;
  std::string letters;
};

/// Draws the item into a slot that is too narrow for its text: the white sign on a dark ground; armed, the
/// black sign on a white ground with a dark edge; the last letters that can be read on that ground, without
/// the sign. It has a ground of its own, so that it can be read on light panels and on dark ones. `width` and
/// `height` are in units of the context, whose device scale is the screen's. Fonts are opened for letters
/// only. Main thread.
void drawStatusIcon(cairo_t* context, const StatusTitle& title, double width, double height);

}  // namespace keyvora::x11

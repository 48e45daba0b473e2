#include "hosts/x11/status/status_icon.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "hosts/x11/gobject.h"

namespace keyvora::x11 {
namespace {

constexpr std::string_view sign = "⌥";

constexpr double dark = 0.13;
constexpr double light = 1;

/// The background is wider than high when letters need it and the slot has the width.
constexpr double widestGround = 1.5;

struct Box {
  double x;
  double y;
  double width;
  double height;

  [[nodiscard]] Box inset(double by) const { return {x + by, y + by, width - 2 * by, height - 2 * by}; }
};

void setGray(cairo_t* context, double gray) {
  cairo_set_source_rgb(context, gray, gray, gray);
}

void traceRounded(cairo_t* context, const Box& box, double radius) {
  constexpr double quarter = std::numbers::pi / 2;
  const double right = box.x + box.width;
  const double bottom = box.y + box.height;
  cairo_new_sub_path(context);
  cairo_arc(context, right - radius, box.y + radius, radius, -quarter, 0);
  cairo_arc(context, right - radius, bottom - radius, radius, 0, quarter);
  cairo_arc(context, box.x + radius, bottom - radius, radius, quarter, 2 * quarter);
  cairo_arc(context, box.x + radius, box.y + radius, radius, 2 * quarter, 3 * quarter);
  cairo_close_path(context);
}

/// Draws the background; a light one gets an edge to be visible on light panels.
void drawGround(cairo_t* context, const Box& box, bool isLight) {
  const double radius = std::min(box.width, box.height) * 0.2;
  traceRounded(context, box, radius);
  setGray(context, dark);
  cairo_fill(context);
  if (!isLight) return;
  const double edge = box.height < 32 ? 1 : 2;
  traceRounded(context, box.inset(edge), radius - edge / 2);
  setGray(context, light);
  cairo_fill(context);
}

/// Draws the option sign as strokes: many fonts lack it, and none is hinted for it at these sizes.
void drawSign(cairo_t* context, const Box& ground, double gray) {
  const double side = std::min(ground.width, ground.height);
  const double stroke = std::max(2.0, std::round(side / 8));
  const double left = ground.x + std::round((ground.width - side * 0.7) / 2);
  const double right = ground.x + ground.width - (left - ground.x);
  const double width = right - left;
  // Places the strokes so that their edges fall between pixels.
  const double top = ground.y + std::round(ground.height * 0.26) + stroke / 2;
  const double bottom = ground.y + ground.height - std::round(ground.height * 0.26) - stroke / 2;
  setGray(context, gray);
  cairo_set_line_width(context, stroke);
  cairo_set_line_join(context, CAIRO_LINE_JOIN_MITER);
  cairo_move_to(context, left, top);
  cairo_line_to(context, left + width * 0.36, top);
  cairo_line_to(context, left + width * 0.66, bottom);
  cairo_line_to(context, right, bottom);
  cairo_move_to(context, left + width * 0.62, top);
  cairo_line_to(context, right, top);
  cairo_stroke(context);
}

/// How many letters are legible in a slot of this width.
std::size_t lettersFor(double width) {
  if (width < 20) return 2;
  if (width < 32) return 3;
  return 4;
}

/// The last `count` characters of a text that is valid UTF-8.
std::string lastLetters(const std::string& text, std::size_t count) {
  const auto length = static_cast<std::size_t>(g_utf8_strlen(text.c_str(), -1));
  const auto skipped = length > count ? length - count : 0;
  return g_utf8_offset_to_pointer(text.c_str(), static_cast<glong>(skipped));
}

/// Draws the letters as large as they fit: narrows them first, and reduces the height only if that is not
/// enough.
void drawLetters(cairo_t* context, const Box& room, const std::string& letters) {
  const GObjectRef<PangoLayout> layout(pango_cairo_create_layout(context));
  PangoFontDescription* font = pango_font_description_from_string("Sans Bold Condensed");
  pango_font_description_set_absolute_size(font, room.height * 1.2 * PANGO_SCALE);
  pango_layout_set_font_description(layout.get(), font);
  pango_font_description_free(font);
  cairo_font_options_t* options = cairo_font_options_create();
  // Narrowed letters do not fit the grid that hinting assumes.
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);  // the panel's subpixel order is unknown
  pango_cairo_context_set_font_options(pango_layout_get_context(layout.get()), options);
  cairo_font_options_destroy(options);
  pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
  pango_layout_set_text(layout.get(), letters.c_str(), -1);

  PangoRectangle ink;
  pango_layout_get_extents(layout.get(), &ink, nullptr);
  if (ink.width <= 0 || ink.height <= 0) return;
  const double inkWidth = static_cast<double>(ink.width) / PANGO_SCALE;
  const double inkHeight = static_cast<double>(ink.height) / PANGO_SCALE;
  // Letters are legible down to this part of their width, also where the font has no condensed face.
  constexpr double narrowest = 0.5;
  const double down = std::min(room.height / inkHeight, room.width / (inkWidth * narrowest));
  const double across = std::min(down, room.width / inkWidth);

  setGray(context, dark);
  cairo_save(context);
  cairo_translate(context, room.x + (room.width - inkWidth * across) / 2,
                  room.y + (room.height - inkHeight * down) / 2);
  cairo_scale(context, across, down);
  cairo_move_to(context, -static_cast<double>(ink.x) / PANGO_SCALE,
                -static_cast<double>(ink.y) / PANGO_SCALE);
  pango_cairo_show_layout(context, layout.get());
  cairo_restore(context);
}

}  // namespace

StatusTitle StatusTitle::of(std::string_view title) {
  if (title.substr(0, sign.size()) != sign) return {true, std::string(title)};
  title.remove_prefix(sign.size());
  const bool isArmed = !title.empty();
  if (isArmed && title.front() == ' ') title.remove_prefix(1);
  return {isArmed, std::string(title)};
}

void drawStatusIcon(cairo_t* context, const StatusTitle& title, double width, double height) {
  const bool hasLetters = !title.letters.empty();
  const double groundWidth = std::min(width, std::floor(height * (hasLetters ? widestGround : 1)));
  const double groundHeight = std::min(width, height);
  const Box ground{std::floor((width - groundWidth) / 2), std::floor((height - groundHeight) / 2),
                   groundWidth, groundHeight};
  drawGround(context, ground, title.isArmed);
  if (!hasLetters) {
    drawSign(context, ground, title.isArmed ? dark : light);
    return;
  }
  auto room = ground.inset(ground.height < 32 ? 2 : 3);
  const double lettersHeight = std::round(ground.height * 0.56);
  room.y += std::round((room.height - lettersHeight) / 2);
  room.height = lettersHeight;
  drawLetters(context, room, lastLetters(title.letters, lettersFor(ground.width)));
}

void openFonts() {
  constexpr int size = 22;
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size);
  cairo_t* context = cairo_create(surface);
  drawStatusIcon(context, {true, "A"}, size, size);
  cairo_destroy(context);
  cairo_surface_destroy(surface);
}

}  // namespace keyvora::x11

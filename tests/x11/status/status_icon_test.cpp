#include "hosts/x11/status/status_icon.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <vector>

namespace keyvora::x11 {
namespace {

struct SurfaceDestroy {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceDestroy>;

constexpr std::array sizes{16, 22, 24, 32, 48};
constexpr std::array scales{1, 2};
constexpr std::array<const char*, 7> titles{"⌥", "⌥ ", "⌥ H", "⌥ HF", "⌥ HFC", "⌥ WQMW", "⌥ I1"};
constexpr double lightPanel = 0.93;
constexpr double darkPanel = 0.11;

/// Draws the item on a panel of this gray, in a slot of this size.
Surface draw(const char* title, double panel, int width, int height, int scale) {
  Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width * scale, height * scale));
  cairo_surface_set_device_scale(surface.get(), scale, scale);
  cairo_t* context = cairo_create(surface.get());
  cairo_set_source_rgb(context, panel, panel, panel);
  cairo_paint(context);
  drawStatusIcon(context, StatusTitle::of(title), width, height);
  cairo_destroy(context);
  cairo_surface_flush(surface.get());
  return surface;
}

/// The brightness of each pixel, row by row, from 0 to 255.
std::vector<std::vector<int>> pixels(const Surface& surface) {
  const auto* data = cairo_image_surface_get_data(surface.get());
  const int stride = cairo_image_surface_get_stride(surface.get());
  std::vector<std::vector<int>> rows;
  for (int y = 0; y < cairo_image_surface_get_height(surface.get()); ++y) {
    auto& row = rows.emplace_back();
    for (int x = 0; x < cairo_image_surface_get_width(surface.get()); ++x)
      row.push_back(data[y * stride + x * 4 + 1]);
  }
  return rows;
}

/// How many pixels differ visibly.
int seenDifferences(const Surface& one, const Surface& other) {
  const auto left = pixels(one);
  const auto right = pixels(other);
  constexpr int seen = 80;
  int count = 0;
  for (std::size_t y = 0; y < left.size(); ++y) {
    for (std::size_t x = 0; x < left[y].size(); ++x) count += std::abs(left[y][x] - right[y][x]) > seen;
  }
  return count;
}

/// The number of rows with dark ink on the light background, without its edges.
int inkHeight(const Surface& surface) {
  const auto rows = pixels(surface);
  const auto inset = rows.size() / 6;
  int top = -1;
  int bottom = -2;
  for (auto y = inset; y + inset < rows.size(); ++y) {
    bool hasInk = false;
    for (auto x = inset; x + inset < rows[y].size(); ++x) hasInk |= rows[y][x] < 128;
    if (!hasInk) continue;
    if (top < 0) top = static_cast<int>(y);
    bottom = static_cast<int>(y);
  }
  return bottom - top + 1;
}

TEST(StatusIconTest, TheTitleIsTakenApart) {
  EXPECT_EQ(StatusTitle::of("⌥"), (StatusTitle{false, ""}));
  EXPECT_EQ(StatusTitle::of("⌥ "), (StatusTitle{true, ""}));
  EXPECT_EQ(StatusTitle::of("⌥ HF"), (StatusTitle{true, "HF"}));
  EXPECT_EQ(StatusTitle::of("⌥  "), (StatusTitle{true, " "}));
  EXPECT_EQ(StatusTitle::of("other"), (StatusTitle{true, "other"}));
}

TEST(StatusIconTest, IdleArmedAndLettersAreToldApartOnEveryPanel) {
  for (const int size : sizes) {
    for (const int scale : scales) {
      for (const double panel : {lightPanel, darkPanel}) {
        const auto idle = draw("⌥", panel, size, size, scale);
        const auto armed = draw("⌥ ", panel, size, size, scale);
        const auto letters = draw("⌥ HF", panel, size, size, scale);
        const int pixelCount = size * size * scale * scale;
        EXPECT_GT(seenDifferences(idle, armed), pixelCount / 2) << size << " × " << scale;
        EXPECT_GT(seenDifferences(armed, letters), pixelCount / 8) << size << " × " << scale;
        EXPECT_GT(seenDifferences(idle, letters), pixelCount / 3) << size << " × " << scale;
      }
    }
  }
}

TEST(StatusIconTest, EveryStateStandsOutFromThePanel) {
  for (const int size : sizes) {
    for (const char* title : titles) {
      for (const double panel : {lightPanel, darkPanel}) {
        const Surface empty(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size));
        cairo_t* context = cairo_create(empty.get());
        cairo_set_source_rgb(context, panel, panel, panel);
        cairo_paint(context);
        cairo_destroy(context);
        EXPECT_GT(seenDifferences(draw(title, panel, size, size, 1), empty), size * size / 12)
            << title << " at " << size << " on " << panel;
      }
    }
  }
}

TEST(StatusIconTest, TheLettersAreHighEnoughToBeRead) {
  for (const int size : sizes) {
    for (const int scale : scales) {
      for (const char* title : {"⌥ H", "⌥ HF", "⌥ HFC", "⌥ WQMW"})
        EXPECT_GE(inkHeight(draw(title, lightPanel, size, size, scale)), 8 * scale)
            << title << " at " << size;
    }
  }
}

TEST(StatusIconTest, TheLastLettersShowWhereNotAllFit) {
  const std::map<int, std::pair<const char*, const char*>> cases{{16, {"⌥ XHF", "⌥ HF"}},
                                                                 {22, {"⌥ XHFC", "⌥ HFC"}},
                                                                 {24, {"⌥ XHFC", "⌥ HFC"}},
                                                                 {32, {"⌥ XHFCA", "⌥ HFCA"}},
                                                                 {48, {"⌥ XHFCA", "⌥ HFCA"}}};
  for (const auto& [size, pair] : cases) {
    EXPECT_EQ(seenDifferences(draw(pair.first, lightPanel, size, size, 1),
                              draw(pair.second, lightPanel, size, size, 1)),
              0)
        << size;
    EXPECT_GT(
        seenDifferences(draw(pair.second, lightPanel, size, size, 1), draw("⌥ X", lightPanel, size, size, 1)),
        0);
  }
}

TEST(StatusIconTest, LettersUseTheWidthOfASlotThatIsWiderThanHigh) {
  EXPECT_GT(seenDifferences(draw("⌥ HFCA", lightPanel, 32, 24, 1), draw("⌥ FCA", lightPanel, 32, 24, 1)), 20);
  EXPECT_GE(inkHeight(draw("⌥ HFCA", lightPanel, 32, 24, 1)), 8);
}

/// Pictures for people: every state in every size and scale, on both kinds of panel.
TEST(StatusIconTest, APictureOfEveryState) {
  constexpr int margin = 4;
  constexpr int gap = 2 * margin;
  constexpr int column = 48 * 2 + gap;
  Surface sheet(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, column * static_cast<int>(titles.size()),
                                           2 * 10 * column / 2 * 2));
  cairo_t* context = cairo_create(sheet.get());
  int y = 0;
  for (const double panel : {lightPanel, darkPanel}) {
    for (const int scale : scales) {
      for (const int size : sizes) {
        const int height = size * scale + gap;
        cairo_set_source_rgb(context, panel, panel, panel);
        cairo_rectangle(context, 0, y, column * static_cast<double>(titles.size()), height);
        cairo_fill(context);
        int x = 0;
        for (const char* title : titles) {
          const auto icon = draw(title, panel, size, size, scale);
          cairo_surface_set_device_scale(icon.get(), 1, 1);
          cairo_set_source_surface(context, icon.get(), x + margin, y + margin);
          cairo_paint(context);
          x += column;
        }
        y += height;
      }
    }
  }
  cairo_destroy(context);
  const Surface cut(
      cairo_surface_create_for_rectangle(sheet.get(), 0, 0, column * static_cast<double>(titles.size()), y));
  std::filesystem::create_directories(PICTURES);
  EXPECT_EQ(cairo_surface_write_to_png(cut.get(), PICTURES "/status_icon.png"), CAIRO_STATUS_SUCCESS);
}

}  // namespace
}  // namespace keyvora::x11

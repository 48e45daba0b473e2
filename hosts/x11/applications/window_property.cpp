#include "hosts/x11/applications/window_property.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <cstring>
#include <memory>

namespace keyvora::x11 {
namespace {

struct FreeData {
  void operator()(unsigned char* data) const { XFree(data); }
};

constexpr int numberFormat = 32;
constexpr long mostNumbers = 4096;  // windows on one desktop
constexpr int textFormat = 8;
constexpr long longestText = 1024;  // in units of four bytes

}  // namespace

std::optional<std::vector<unsigned long>> numbersOf(Display* display, Window window, Atom property,
                                                    Atom type) {
  Atom actualType = None;
  int format = 0;
  unsigned long count = 0;
  unsigned long left = 0;
  unsigned char* raw = nullptr;
  const int status = XGetWindowProperty(display, window, property, 0, mostNumbers, False, type, &actualType,
                                        &format, &count, &left, &raw);
  const std::unique_ptr<unsigned char, FreeData> data(raw);
  if (status != Success || !data || actualType != type || format != numberFormat) return std::nullopt;
  std::vector<unsigned long> numbers(count);
  // Xlib returns 32-bit numbers as longs, whatever the size of a long.
  if (count > 0) std::memcpy(numbers.data(), data.get(), count * sizeof(unsigned long));
  return numbers;
}

std::optional<std::string> textOf(Display* display, Window window, Atom property) {
  const Atom type = XInternAtom(display, "UTF8_STRING", False);
  Atom actualType = None;
  int format = 0;
  unsigned long length = 0;
  unsigned long left = 0;
  unsigned char* raw = nullptr;
  const int status = XGetWindowProperty(display, window, property, 0, longestText, False, type, &actualType,
                                        &format, &length, &left, &raw);
  const std::unique_ptr<unsigned char, FreeData> data(raw);
  if (status != Success || !data || actualType != type || format != textFormat) return std::nullopt;
  return std::string(reinterpret_cast<const char*>(data.get()), length);
}

std::optional<std::string> titleOf(Display* display, Window window) {
  if (auto title = textOf(display, window, XInternAtom(display, "_NET_WM_NAME", False))) return title;
  XTextProperty property{};
  if (XGetWMName(display, window, &property) == 0) return std::nullopt;
  const std::unique_ptr<unsigned char, FreeData> value(property.value);
  char** texts = nullptr;
  int count = 0;
  if (Xutf8TextPropertyToTextList(display, &property, &texts, &count) < 0 || texts == nullptr) {
    return std::nullopt;
  }
  std::string title = count > 0 ? texts[0] : "";
  XFreeStringList(texts);
  return title;
}

}  // namespace keyvora::x11

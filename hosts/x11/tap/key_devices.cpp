#include "hosts/x11/tap/key_devices.h"

#include <X11/extensions/XInput2.h>

#include <memory>

namespace keyvora::x11 {
namespace {

struct FreeDevices {
  void operator()(XIDeviceInfo* devices) const { XIFreeDeviceInfo(devices); }
};

/// The server sets this property on XTEST's devices.
bool isXTest(Display* display, int device) {
  const Atom mark = XInternAtom(display, "XTEST Device", True);
  if (mark == None) return false;
  Atom type = None;
  int format = 0;
  unsigned long count = 0;
  unsigned long left = 0;
  unsigned char* data = nullptr;
  if (XIGetProperty(display, device, mark, 0, 1, False, AnyPropertyType, &type, &format, &count, &left,
                    &data) != Success) {
    return false;
  }
  const bool marked = count > 0 && data != nullptr && data[0] != 0;
  if (data != nullptr) XFree(data);
  return marked;
}

}  // namespace

std::optional<KeyDevices> findKeyDevices(Display* display) {
  int count = 0;
  const std::unique_ptr<XIDeviceInfo, FreeDevices> owned(XIQueryDevice(display, XIAllDevices, &count));
  if (!owned) return std::nullopt;
  KeyDevices found;
  for (int i = count - 1; i >= 0; --i) {  // windows receive the first master's events by default
    const auto& device = owned.get()[i];
    if (device.use == XIMasterKeyboard) found.master = device.deviceid;
  }
  for (int i = 0; i < count; ++i) {
    const auto& device = owned.get()[i];
    const bool isOurs = device.use == XISlaveKeyboard && device.attachment == found.master;
    if (isOurs && isXTest(display, device.deviceid)) found.xtest = device.deviceid;
  }
  if (found.master == 0) return std::nullopt;
  return found;
}

}  // namespace keyvora::x11

#include "tests/x11/private_session.h"

#include <X11/Xlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdio>

#include "hosts/posix/file_descriptor.h"
#include "hosts/x11/display.h"

namespace keyvora::x11 {
namespace {

/// Whether a process accepts connections there: the socket's file exists before that.
bool isListening(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const posix::FileDescriptor file(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  return connect(file.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

}  // namespace

PrivateSession::PrivateSession() {
  // Removes all traces of the session that the tests are run from.
  for (const char* name : {"WAYLAND_DISPLAY", "XDG_SESSION_TYPE", "XDG_CURRENT_DESKTOP", "AT_SPI_BUS_ADDRESS",
                           "NO_AT_BRIDGE", "GTK_MODULES", "GTK_THEME"}) {
    unsetenv(name);
  }
  setenv("DISPLAY", display_.name().c_str(), 1);
  setenv("HOME", home().c_str(), 1);
  for (const auto& [name, folder] :
       {std::pair{"XDG_CONFIG_HOME", "config"}, std::pair{"XDG_DATA_HOME", "data"},
        std::pair{"XDG_CACHE_HOME", "cache"}, std::pair{"XDG_RUNTIME_DIR", "run"}}) {
    std::filesystem::create_directory(home() / folder);
    setenv(name, (home() / folder).c_str(), 1);
  }
  std::filesystem::permissions(home() / "run", std::filesystem::perms::owner_all);
  startBus();
}

PrivateSession::~PrivateSession() {
  tray_.kill();
  endBuses();
}

void PrivateSession::startBus() {
  const auto socket = home() / "run" / "bus";
  const auto address = "unix:path=" + socket.string();
  bus_ = Child({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address}, {});
  if (!runUntil([&socket] { return isListening(socket); })) {
    throw std::runtime_error("dbus-daemon did not start");
  }
  setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
}

void PrivateSession::endBuses() {
  bus_.kill();
}

void PrivateSession::startTray(const std::vector<std::string>& options) {
  std::vector<std::string> command{"trayer"};
  command.insert(command.end(), options.begin(), options.end());
  tray_ = Child(command, {});
  const auto connection = Connection::open("");
  const Atom selection = connection->atom("_NET_SYSTEM_TRAY_S0");
  if (!runUntil([&] { return XGetSelectionOwner(connection->get(), selection) != None; })) {
    throw std::runtime_error("trayer did not become the system tray");
  }
}

void PrivateSession::endTray() {
  tray_.kill();
}

}  // namespace keyvora::x11

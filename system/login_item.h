#pragma once

/// Launch at login. The system stores the registration. Main thread.
namespace keyvora::LoginItem {

/// Registers the program to be started at login, or removes the registration. A failure is one log line.
void set(bool launchAtLogin);

}  // namespace keyvora::LoginItem

#pragma once

/// Launch at login. The system keeps the registration; nothing is stored here. Main thread.
namespace keyvora::LoginItem {

/// Registers the program to be started at login, or takes that back. A failure is one log line.
void set(bool launchAtLogin);

}  // namespace keyvora::LoginItem

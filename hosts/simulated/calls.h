#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace keyvora::simulated {

/// Every call of the door that can be made to fail, in the order of the door's headers.
enum class Call {
  isTrusted,
  isTrustedPrompting,
  elementAttribute,
  elementPerform,
  setActivationPolicy,
  activate,
  print,
  atExit,
  running,
  frontmost,
  openFile,
  openAddress,
  resourceDirectory,
  resource,
  information,
  identifier,
  openBundle,
  localTime,
  writeConsole,
  findings,
  facts,
  applicationSupportDirectory,
  libraryDirectory,
  createDirectories,
  exists,
  copy,
  read,
  append,
  replace,
  watch,
  createTap,
  enableTap,
  createSource,
  createEvent,
  postToProcess,
  postToHardware,
  loginStatus,
  registerProgram,
  unregisterProgram,
  schedule,
  after,
  async,
  drain,
  walk,
  runScript,
  createStatusItem,
  setTitle,
  setMenu,
  startUpdater,
  checkForUpdates,
  checkForUpdateInformation,
};

/// Properties of a call besides its failure.
struct CallTraits {
  Call call;
  std::string_view name;
  /// The call is fatal on other threads than the main thread.
  bool mainThreadOnly;
  /// What a failure looks like to the caller.
  std::string_view failure;
};

/// All calls, in the order of the enumeration. A test that makes each of them fail iterates over this
/// table.
inline constexpr std::array allCalls{
    CallTraits{Call::isTrusted, "isTrusted", true, "false"},
    CallTraits{Call::isTrustedPrompting, "isTrustedPrompting", true, "false"},
    CallTraits{Call::elementAttribute, "elementAttribute", true, "error -25204 without a value"},
    CallTraits{Call::elementPerform, "elementPerform", true, "error -25204, nothing done"},
    CallTraits{Call::setActivationPolicy, "setActivationPolicy", true, "no effect"},
    CallTraits{Call::activate, "activate", true, "no effect"},
    CallTraits{Call::print, "print", true, "the line is lost"},
    CallTraits{Call::atExit, "atExit", false, "the block never runs"},
    CallTraits{Call::running, "running", true, "an empty list"},
    CallTraits{Call::frontmost, "frontmost", true, "none"},
    CallTraits{Call::openFile, "openFile", true, "no effect"},
    CallTraits{Call::openAddress, "openAddress", true, "no effect"},
    CallTraits{Call::resourceDirectory, "resourceDirectory", false, "none"},
    CallTraits{Call::resource, "resource", false, "none"},
    CallTraits{Call::information, "information", false, "none"},
    CallTraits{Call::identifier, "identifier", false, "none"},
    CallTraits{Call::openBundle, "openBundle", false, "null"},
    CallTraits{Call::localTime, "localTime", false, "empty text"},
    CallTraits{Call::writeConsole, "writeConsole", false, "the record is lost"},
    CallTraits{Call::findings, "findings", true, "an empty list"},
    CallTraits{Call::facts, "facts", true, "an empty list"},
    CallTraits{Call::applicationSupportDirectory, "applicationSupportDirectory", false, "none"},
    CallTraits{Call::libraryDirectory, "libraryDirectory", false, "none"},
    CallTraits{Call::createDirectories, "createDirectories", false, "false, nothing made"},
    CallTraits{Call::exists, "exists", false, "false"},
    CallTraits{Call::copy, "copy", false, "false, nothing copied"},
    CallTraits{Call::read, "read", true, "an error text"},
    CallTraits{Call::append, "append", false, "false, nothing written"},
    CallTraits{Call::replace, "replace", false, "false, nothing written"},
    CallTraits{Call::watch, "watch", true, "null"},
    CallTraits{Call::createTap, "createTap", true, "null"},
    CallTraits{Call::enableTap, "enableTap", true, "no effect"},
    CallTraits{Call::createSource, "createSource", false, "null"},
    CallTraits{Call::createEvent, "createEvent", false, "null"},
    CallTraits{Call::postToProcess, "postToProcess", false, "the event is lost"},
    CallTraits{Call::postToHardware, "postToHardware", false, "the event is lost"},
    CallTraits{Call::loginStatus, "loginStatus", true, "not found"},
    CallTraits{Call::registerProgram, "registerProgram", true, "an error text"},
    CallTraits{Call::unregisterProgram, "unregisterProgram", true, "an error text"},
    CallTraits{Call::schedule, "schedule", true, "a valid timer that never fires"},
    CallTraits{Call::after, "after", false, "the block never runs"},
    CallTraits{Call::async, "async", false, "the work never runs"},
    CallTraits{Call::drain, "drain", false, "false at once"},
    CallTraits{Call::walk, "walk", false, "the plan is never walked"},
    CallTraits{Call::runScript, "runScript", true, "failure without a message"},
    CallTraits{Call::createStatusItem, "createStatusItem", true, "an item without a button"},
    CallTraits{Call::setTitle, "setTitle", true, "no effect"},
    CallTraits{Call::setMenu, "setMenu", true, "no effect"},
    CallTraits{Call::startUpdater, "startUpdater", true, "no effect"},
    CallTraits{Call::checkForUpdates, "checkForUpdates", true, "no effect"},
    CallTraits{Call::checkForUpdateInformation, "checkForUpdateInformation", true, "no answer"},
};

inline constexpr std::size_t callCount = allCalls.size();

constexpr std::size_t indexOf(Call call) {
  return static_cast<std::size_t>(call);
}

constexpr const CallTraits& traits(Call call) {
  return allCalls[indexOf(call)];
}

namespace detail {
constexpr bool isInOrder() {
  for (std::size_t i = 0; i < callCount; ++i) {
    if (indexOf(allCalls[i].call) != i) return false;
  }
  return indexOf(Call::checkForUpdateInformation) + 1 == callCount;
}
static_assert(isInOrder(), "the table of calls follows the enumeration");
}  // namespace detail

}  // namespace keyvora::simulated

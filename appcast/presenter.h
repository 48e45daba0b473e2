#pragma once

#include <functional>
#include <string>

namespace keyvora::appcast {

/// An update as the user is told of it.
struct Announcement {
  std::string displayVersion;
  /// The version that runs.
  std::string currentVersion;
  /// Release notes as text; empty when there are none, or they are a page of their own.
  std::string notes;
  /// Where the release notes are, when they are a page of their own; else empty.
  std::string notesAddress;
  /// Where to read on or to get it; empty when the feed does not say.
  std::string address;
};

/// What the user does about an update: later is what closing the window means.
enum class Choice { open, skip, later };

/// The window that shows a check and its answer; there is one, and each call replaces what it shows. Main
/// thread. The callbacks are called at most once, by the user's doing, after the window has gone.
class Presenter {
 public:
  virtual ~Presenter() = default;

  /// Whether windows can be shown at all.
  [[nodiscard]] virtual bool isAvailable() const = 0;

  virtual void showChecking(std::function<void()> cancelled) = 0;
  virtual void showUpdate(const Announcement& announcement, std::function<void(Choice)> chosen) = 0;
  virtual void showMessage(const std::string& title, const std::string& details,
                           std::function<void()> acknowledged) = 0;

  /// Brings the window to the front, where there is one.
  virtual void bringForward() = 0;

  /// Takes the window away without a callback.
  virtual void close() = 0;
};

}  // namespace keyvora::appcast

#pragma once

#include <functional>
#include <string>

namespace keyvora::appcast {

/// An update as it is shown to the user.
struct Announcement {
  std::string displayVersion;
  /// The version that is running.
  std::string currentVersion;
  /// Release notes as text; empty when there are none, or when they are on a page of their own.
  std::string notes;
  /// The address of the release notes, when they are on a page of their own; else empty.
  std::string notesAddress;
  /// The page to read more or to download from; empty when the feed names none.
  std::string address;
};

/// The user's answer to an update. Closing the window means `later`.
enum class Choice { open, skip, later };

/// The one window that shows a check and its answer; each call replaces its content. Main thread. The
/// callbacks are called at most once, when the user acts, after the window has closed.
class Presenter {
 public:
  virtual ~Presenter() = default;

  /// Whether windows can be shown at all.
  [[nodiscard]] virtual bool isAvailable() const = 0;

  virtual void showChecking(std::function<void()> cancelled) = 0;
  virtual void showUpdate(const Announcement& announcement, std::function<void(Choice)> chosen) = 0;
  virtual void showMessage(const std::string& title, const std::string& details,
                           std::function<void()> acknowledged) = 0;

  /// Brings the window to the front, if it is open.
  virtual void bringForward() = 0;

  /// Closes the window without a callback.
  virtual void close() = 0;
};

}  // namespace keyvora::appcast

#pragma once

#include <memory>
#include <string>

namespace keyvora::platform {

/// An update that a feed offers.
struct UpdateItem {
  /// The version as people write it.
  std::string displayVersionString;
  /// The version by which updates are compared.
  std::string versionString;
};

/// What an updater reports to its owner, after Sparkle's `SPUUpdaterDelegate` and
/// `SPUStandardUserDriverDelegate`. Called on the main thread. Without an update, `didNotFindUpdate` is
/// called and then `didAbort`.
class UpdaterDelegate {
 public:
  virtual ~UpdaterDelegate() = default;

  virtual void didFindValidUpdate(const UpdateItem& item) = 0;
  virtual void didNotFindUpdate(const std::string& errorDescription) = 0;
  virtual void didAbort(const std::string& errorDescription) = 0;

  /// Whether the owner can remind the user of a scheduled update without interrupting.
  [[nodiscard]] virtual bool supportsGentleScheduledUpdateReminders() const = 0;

  /// Whether the standard user interface should show an update that a scheduled check found.
  [[nodiscard]] virtual bool shouldHandleShowingScheduledUpdate(const UpdateItem& item,
                                                                bool inImmediateFocus) const = 0;

  /// An update is about to be shown: by the standard user interface if `handleShowingUpdate` is true.
  virtual void willHandleShowingUpdate(bool handleShowingUpdate, const UpdateItem& item) = 0;

  /// The user has closed the update, or the check that was shown has ended.
  virtual void willFinishUpdateSession() = 0;
};

/// The standard updater with its user interface, which also shows errors. Main thread.
class UpdaterController {
 public:
  virtual ~UpdaterController() = default;

  /// Starts scheduled checks. Calling it again has no effect.
  virtual void startUpdater() = 0;

  /// A check that the user asked for, with its user interface.
  virtual void checkForUpdates() = 0;

  /// A check without any user interface; the delegate gets the answer.
  virtual void checkForUpdateInformation() = 0;
};

/// The update framework. Main thread.
class Updates {
 public:
  virtual ~Updates() = default;

  /// A controller, started at once if `startingUpdater` is true; `delegate` must outlive it. Never null.
  virtual std::unique_ptr<UpdaterController> createController(bool startingUpdater,
                                                              UpdaterDelegate& delegate) = 0;
};

}  // namespace keyvora::platform

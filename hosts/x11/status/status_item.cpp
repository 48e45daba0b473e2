#include "hosts/x11/status/status_item.h"

#include <utility>

#include "hosts/x11/gobject.h"
#include "hosts/x11/status/status_icon.h"
#include "hosts/x11/toolkit.h"
#include "text/utf8.h"

namespace keyvora::x11 {

StatusItem::StatusItem(MainLoop& loop, platform::Seconds patience, std::function<void()> onUnseen)
    : loop_(loop),
      patience_(patience),
      onUnseen_(std::move(onUnseen)),
      tray_(loop,
            [this] {
              plug_.reset();
              if (!notifier_) show();
            }),
      host_([this] { show(); }) {}

StatusItem::~StatusItem() {
  if (open_ && open_->isOpen()) loop_.endTracking();
}

void StatusItem::setTitle(std::string_view title) {
  auto text = text::validText(title);
  if (text == title_) return;
  title_ = std::move(text);
  if (notifier_) notifier_->setTitle(title_);
  if (plug_) plug_->setTitle(title_);
}

void StatusItem::setMenu(platform::Menu menu) {
  menu_ = std::move(menu);
  if (notifier_) notifier_->setMenu(menu_);
}

/// Shows the item in the panel that is present now.
void StatusItem::show() {
  if (!host_.isKnown()) return;  // wait for the answer, so that the item never appears in both
  notifier_.reset();
  showing_.reset();
  if (host_.isPresent()) {
    plug_.reset();
    openFonts();  // not at the first letter, when the user's next key would wait
    notifier_ = std::make_unique<Notifier>(loop_, host_, [this](int x, int y) { openMenuAt(x, y); });
    notifier_->setTitle(title_);
    notifier_->setMenu(menu_);
  } else if (tray_.isPresent()) {
    showInTray();
  }
  awaitPanel();
}

/// GTK takes long to open, and keys cannot be handled meanwhile: on a busy machine the tap might not wait so
/// long. So there is a pass of the loop before each further step.
void StatusItem::showInTray() {
  if (plug_) return;
  openToolkit();
  inNextPass([this] {
    loadTheme();
    inNextPass([this] { dock(); });
  });
}

void StatusItem::inNextPass(std::function<void()> step) {
  showing_ = loop_.schedule({}, false, platform::TimerMode::commonModes, std::move(step));
}

void StatusItem::dock() {
  showing_.reset();
  plug_ = std::make_unique<TrayPlug>(tray_, title_, [this](const GdkEvent* event) {
    openMenu([this, event](StatusMenu& menu) { return menu.open(plug_->button(), event); });
  });
}

void StatusItem::awaitPanel() {
  if (notifier_ || plug_ || showing_ || !onUnseen_) {
    unseen_.reset();
  } else if (!unseen_) {
    unseen_ = loop_.schedule(patience_, false, platform::TimerMode::commonModes,
                             [this] { std::exchange(onUnseen_, nullptr)(); });
  }
}

void StatusItem::openMenuAt(int x, int y) {
  // Later, because the panel may keep the mouse grabbed until it has got its answer.
  opening_ = loop_.schedule({}, false, platform::TimerMode::commonModes, [this, x, y] {
    if (!openToolkit()) return;
    openMenu([x, y](StatusMenu& menu) { return menu.openAt(x, y); });
  });
}

void StatusItem::openMenu(const std::function<bool(StatusMenu&)>& open) {
  if (open_ && open_->isOpen()) return;
  open_ = std::make_unique<StatusMenu>(menu_, [this] { menuClosed(); });
  if (!open(*open_)) {
    open_.reset();
    return;
  }
  loop_.beginTracking();
}

void StatusItem::menuClosed() {
  loop_.endTracking();
  // The menu's command still follows in this pass of the loop.
  release_ = loop_.schedule({}, false, platform::TimerMode::commonModes, [this] {
    if (open_ && !open_->isOpen()) open_.reset();
  });
}

}  // namespace keyvora::x11

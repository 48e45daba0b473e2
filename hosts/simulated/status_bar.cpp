#include "hosts/simulated/status_bar.h"

#include "platform/fatal.h"

namespace keyvora::simulated {

class StatusBar::Item final : public platform::StatusItem {
 public:
  Item(World& world, std::shared_ptr<Shown> shown, bool hasButton)
      : world_(world), shown_(std::move(shown)), hasButton_(hasButton) {
    shown_->present = true;
  }
  ~Item() override { *shown_ = Shown{}; }

  [[nodiscard]] bool hasButton() const override { return hasButton_; }

  void setTitle(std::string_view title) override {
    if (world_.fails(Call::setTitle)) return;
    shown_->title = title;
    world_.trace.add(trace::TitleShown{shown_->title});
  }

  void setMenu(platform::Menu menu) override {
    if (world_.fails(Call::setMenu)) return;
    trace::MenuShown entry;
    for (const auto& row : menu.rows) entry.titles.push_back(row.title);
    world_.trace.add(std::move(entry));
    shown_->menu = std::move(menu);
  }

 private:
  World& world_;
  std::shared_ptr<Shown> shown_;
  bool hasButton_;
};

StatusBar::StatusBar(World& world) : world_(world), shown_(std::make_shared<Shown>()) {}

StatusBar::~StatusBar() = default;

void StatusBar::choose(std::string_view title) {
  const auto rows = shown_->menu.rows;  // an action may replace the menu
  for (const auto& row : rows) {
    if (row.title == title && row.isEnabled()) return row.action();
  }
  platform::fatal("the menu has no enabled row " + std::string(title));
}

bool StatusBar::pressKey(char letter) {
  const auto rows = shown_->menu.rows;
  for (const auto& row : rows) {
    if (row.keyEquivalent == letter && row.isEnabled()) {
      row.action();
      return true;
    }
  }
  return false;
}

std::unique_ptr<platform::StatusItem> StatusBar::createItem() {
  const bool fails = world_.fails(Call::createStatusItem);
  shown_ = std::make_shared<Shown>();
  return std::make_unique<Item>(world_, shown_, givesButton && !fails);
}

}  // namespace keyvora::simulated

#include "tap/perform.h"

#include <variant>

#include "runner/runner.h"

namespace keyvora {
namespace {

/// A visitor of `Action`: one call for each kind.
struct Performance {
  Runner& runner;
  std::string label;

  void operator()(const action::AppleScript& action) const { runner.runAppleScript(action.script, label); }
  void operator()(const action::Keystroke& action) const {
    runner.sendKeystroke(action.key, action.modifiers, label);
  }
  void operator()(const action::KeyTips& action) const { runner.sendKeyTips(action.keys, label); }
  void operator()(const action::Menu& action) const { runner.clickMenu(action.path, label); }
};

}  // namespace

void perform(const Sequence& sequence, Runner& runner) {
  std::visit(Performance{runner, sequence.keys + "  " + sequence.name}, sequence.action);
}

}  // namespace keyvora

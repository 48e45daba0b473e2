#include "log/log.h"
#include "runner/excel.h"
#include "runner/key_names.h"
#include "runner/modifiers.h"
#include "runner/outcome.h"
#include "runner/own_event_source.h"
#include "runner/posting.h"
#include "runner/runner.h"

namespace keyvora {

void Runner::sendKeystroke(const std::string& key, const std::vector<std::string>& modifiers,
                           const std::string& name) {
  const auto code = keyCodeFor(key);
  if (!code) return Log::line(outcome::noKeyCode(name, key));

  const auto press = makeKeyPress(source_->get(), *code);
  if (!press) return;

  // Modifiers are flags on the key's two events; no modifier keys are pressed.
  const auto flags = modifierFlags(modifiers);
  press->down->setFlags(flags);
  press->up->setFlags(flags);
  const auto target = Excel::app();
  post(*press->down, target);
  post(*press->up, target);
  Log::line(outcome::done(name, "keystroke"));
}

}  // namespace keyvora

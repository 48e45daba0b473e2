#include "log/log.h"
#include "platform/platform.h"
#include "runner/excel.h"
#include "runner/menu_walk.h"
#include "runner/outcome.h"
#include "runner/runner.h"

namespace keyvora {

void Runner::clickMenu(const std::vector<std::string>& path, const std::string& name) {
  const auto target = Excel::app();
  if (!target) return Log::line(outcome::failed(name, "Excel is not running"));

  auto element = menu_walk::menuBar(*platform::current().accessibility.application(*target));
  if (!element) return Log::line(outcome::failed(name, "no menu bar"));

  for (const auto& title : path) {
    const auto children = menu_walk::children(*element);
    if (!children) return Log::line(outcome::failedAt(name, title));
    element = menu_walk::find(*children, title);
    if (!element) return Log::line(outcome::failed(name, "no menu named " + title));
  }

  // The result is ignored: applications may answer late, or with an error for a press that they carried
  // out.
  element->perform("AXPress");
  Log::line(outcome::done(name, "menu"));
}

}  // namespace keyvora

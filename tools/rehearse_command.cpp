#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "mapping/document_keys.h"
#include "platform/host.h"
#include "runner/excel.h"
#include "runner/menu_walk.h"
#include "tools/check.h"
#include "tools/commands.h"
#include "tools/document.h"
#include "tools/letters.h"
#include "tools/loaded_document.h"
#include "tools/program_menus.h"
#include "tools/script_compiler.h"
#include "tools/wording.h"

namespace keyvora::tools {
namespace {

/// The findings by kind of action.
struct Counts {
  std::size_t menuPaths = 0;
  std::size_t pathsMissing = 0;
  std::size_t keys = 0;
  std::size_t keysShown = 0;
  std::size_t scripts = 0;
  std::size_t scriptsFailing = 0;
  std::size_t keyTips = 0;
};

std::string joinedPath(const std::vector<std::string>& path) {
  return summary(action::Menu{path});
}

/// Tests sequences against a program's menus and a script compiler, as far as these are available.
class Trial {
 public:
  Trial(ProgramMenus* menus, const ScriptCompiler* compiler, const Streams& streams, bool tellsAll)
      : menus_(menus), compiler_(compiler), streams_(streams), tellsAll_(tellsAll) {}

  void operator()(const Entry& entry) {
    entry_ = &entry;
    std::visit([this](const auto& action) { hold(action); }, entry.sequence.action);
  }

  [[nodiscard]] const Counts& counts() const { return counts_; }
  [[nodiscard]] const Findings& findings() const { return findings_; }

 private:
  void hold(const action::Menu& menu) {
    ++counts_.menuPaths;
    if (menus_ == nullptr) return tell("not tried");
    auto missing = menus_->missing(menu.path);
    if (!missing) return tell("is in the menus");
    ++counts_.pathsMissing;
    fault(key::path, std::move(*missing));
  }

  void hold(const action::Keystroke& keystroke) {
    ++counts_.keys;
    if (menus_ == nullptr) return tell("not tried");
    const auto item = menus_->itemWith(keystroke);
    if (!item) return tell("not in a menu");
    ++counts_.keysShown;
    tell("is " + joinedPath(*item));
  }

  void hold(const action::AppleScript& script) {
    ++counts_.scripts;
    if (compiler_ == nullptr) return tell("not tried");
    auto why = compiler_->fault(script.script);
    if (!why) return tell("compiles");
    ++counts_.scriptsFailing;
    fault(key::script, std::move(*why));
  }

  void hold(const action::KeyTips&) {
    ++counts_.keyTips;
    tell("not tried: only typing shows key tips");
  }

  void tell(const std::string& what) const {
    if (!tellsAll_) return;
    const auto& sequence = entry_->sequence;
    streams_.out << joined(entry_->letters) << "  " << sequence.name << ": " << kindOf(sequence.action) << " "
                 << summary(sequence.action) << ": " << what << "\n";
  }

  void fault(std::string_view key, std::string text) {
    tell("FAULT");
    findings_.push_back({Severity::error, entry_->actionValue(key).position(),
                         describe(entry_->actionPath(key)), joined(entry_->letters) + ": " + std::move(text),
                         "rehearse"});
  }

  ProgramMenus* menus_;
  const ScriptCompiler* compiler_;
  const Streams& streams_;
  bool tellsAll_;
  const Entry* entry_ = nullptr;
  Counts counts_;
  Findings findings_;
};

/// The menu bar of the running program, or why there is none.
std::variant<platform::ElementRef, std::string> menuBarThatRuns(const platform::Platform& platform) {
  if (!platform.accessibility.isTrusted()) {
    return "no permission to read the menus of other programs: on a Mac allow it for your terminal in System "
           "Settings, Privacy & Security, Accessibility; on Linux start it on the desktop, with DISPLAY set";
  }
  const auto process = Excel::app();
  if (!process) return "no spreadsheet is running that could be asked; start it, open a document, try again";
  if (auto bar = menu_walk::menuBar(*platform.accessibility.application(*process))) return bar;
  return "the spreadsheet (process " + std::to_string(*process) +
         ") shows no menus; open a document in it, and on Linux see that there is an accessibility bus "
         "(at-spi2-core)";
}

void tellSummary(const Counts& counts, ProgramMenus* menus, bool compiles, std::ostream& out) {
  if (menus != nullptr) {
    std::string titles;
    for (const auto& title : menus->titles()) titles += (titles.empty() ? "" : ", ") + title;
    out << "menus: " << titles << "\n"
        << counted(counts.menuPaths, "menu path") << ": " << counts.menuPaths - counts.pathsMissing
        << " found, " << counts.pathsMissing << " missing\n"
        << counted(counts.keys, "key") << ": ";
    if (menus->showShortcuts()) {
      out << counts.keysShown << " shown in the menus, " << counts.keys - counts.keysShown
          << " not in a menu\n";
    } else {
      out << "not compared, the menus tell no shortcuts\n";
    }
  }
  if (counts.scripts > 0) {
    out << counted(counts.scripts, "script") << ": ";
    if (compiles) {
      out << counts.scripts - counts.scriptsFailing << " compiled, " << counts.scriptsFailing << " failed\n";
    } else {
      out << "not compiled, there is no osacompile\n";
    }
  }
  if (counts.keyTips > 0) out << counted(counts.keyTips, "sequence") << " of key tips: not tried\n";
}

}  // namespace

int rehearseCommand(const Options& options, const Streams& streams) {
  const auto loaded = loadDocument(options.operand(0), streams);
  if (!loaded) return exit_status::failed;
  const auto* host = streams.host.get();
  if (host == nullptr) {
    streams.error << complaint("this program was built without the means to ask another");
    return exit_status::failed;
  }
  const platform::Scope scope(host->platform());
  auto bar = menuBarThatRuns(host->platform());
  std::optional<ProgramMenus> menus;
  if (auto* element = std::get_if<platform::ElementRef>(&bar)) menus.emplace(std::move(*element));
  std::optional<ScriptCompiler> compiler;
  if (ScriptCompiler::isThere()) compiler.emplace();

  Trial trial(menus ? &*menus : nullptr, compiler ? &*compiler : nullptr, streams, options.has("--all"));
  for (const auto& entry : loaded->document->entries()) trial(entry);
  streams.out << asText(trial.findings(), loaded->name);
  tellSummary(trial.counts(), menus ? &*menus : nullptr, compiler.has_value(), streams.out);
  if (!menus) {
    streams.error << complaint(std::get<std::string>(bar));
    return exit_status::failed;
  }
  return trial.findings().empty() ? exit_status::done : exit_status::no;
}

}  // namespace keyvora::tools

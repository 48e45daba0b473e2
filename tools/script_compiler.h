#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace keyvora::tools {

/// Compiles scripts with `osacompile`, which comes with macOS, without running them. Main thread; waits for
/// it.
class ScriptCompiler {
 public:
  ScriptCompiler();
  ~ScriptCompiler();
  ScriptCompiler(const ScriptCompiler&) = delete;
  ScriptCompiler& operator=(const ScriptCompiler&) = delete;

  /// Whether `osacompile` is on PATH.
  [[nodiscard]] static bool isThere();

  /// Why a script does not compile inside the runner's tell block; none when it does.
  [[nodiscard]] std::optional<std::string> fault(const std::string& script) const;

 private:
  std::filesystem::path folder_;
};

}  // namespace keyvora::tools

#include "hosts/x11/applications/target_registry.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>

namespace keyvora::x11 {
namespace {

struct StandIn {
  std::string_view windowClass;
  std::string_view bundleIdentifier;
};

/// The programs that replace an application which does not exist on Linux. Lower case: a program under Wine
/// is named after its file, whose case varies.
constexpr auto standIns = std::to_array<StandIn>({
    {"gnumeric", "com.microsoft.Excel"},
    {"libreoffice-calc", "com.microsoft.Excel"},
    {"excel.exe", "com.microsoft.Excel"},
});

/// Prefixes of the classes of LibreOffice's windows.
constexpr auto libreOffice = std::to_array<std::string_view>({"libreoffice", "soffice", "vclsalframe"});

bool matches(std::string_view name, std::string_view lowerCase) {
  return std::ranges::equal(name, lowerCase, {}, text::asciiLower);
}

bool startsWith(std::string_view name, std::string_view lowerCase) {
  return matches(name.substr(0, lowerCase.size()), lowerCase);
}

bool isLibreOffice(std::string_view instanceName, std::string_view className) {
  return std::ranges::any_of(libreOffice, [&](std::string_view beginning) {
    return startsWith(className, beginning) || startsWith(instanceName, beginning);
  });
}

}  // namespace

std::string_view bundleIdentifierOf(std::string_view instanceName, std::string_view className) {
  for (const auto& standIn : standIns) {
    // Older versions of Wine give every window the class "Wine", and the file's name as the instance only.
    if (matches(className, standIn.windowClass) || matches(instanceName, standIn.windowClass)) {
      return standIn.bundleIdentifier;
    }
  }
  return {};
}

bool mayBecomeAnother(std::string_view instanceName, std::string_view className) {
  return className.empty() || isLibreOffice(instanceName, className);
}

bool sharesKeys(std::string_view instanceName, std::string_view className) {
  return isLibreOffice(instanceName, className);
}

}  // namespace keyvora::x11

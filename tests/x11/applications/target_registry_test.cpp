#include "hosts/x11/applications/target_registry.h"

#include <gtest/gtest.h>

namespace keyvora::x11 {
namespace {

TEST(TargetRegistry, WindowClassesStandInForTheTarget) {
  struct Row {
    std::string_view instanceName;
    std::string_view className;
    std::string_view expected;
  };
  constexpr std::string_view excel = "com.microsoft.Excel";
  for (const auto& row : std::initializer_list<Row>{
           {"gnumeric", "Gnumeric", excel},
           {"libreoffice", "libreoffice-calc", excel},
           {"excel.exe", "excel.exe", excel},
           {"EXCEL.EXE", "EXCEL.EXE", excel},
           {"excel.exe", "Wine", excel},
           {"libreoffice", "libreoffice-writer", ""},
           {"soffice", "Soffice", ""},
           {"winword.exe", "winword.exe", ""},
           {"gnumeric2", "Gnumeric2", ""},
           {"", "", ""},
       }) {
    EXPECT_EQ(bundleIdentifierOf(row.instanceName, row.className), row.expected)
        << row.instanceName << ", " << row.className;
  }
}

TEST(TargetRegistry, WindowsWithoutAClassAndThoseOfLibreOfficeMayBecomeAnother) {
  struct Row {
    std::string_view instanceName;
    std::string_view className;
    bool expected;
  };
  for (const auto& row : std::initializer_list<Row>{
           {"", "", true},
           {"libreoffice", "libreoffice-startcenter", true},
           {"libreoffice", "libreoffice-calc", true},
           {"VCLSalFrame.DocumentWindow", "LibreOffice 7.4", true},
           {"soffice", "Soffice", true},
           {"gnumeric", "Gnumeric", false},
           {"excel.exe", "Wine", false},
           {"office", "Office", false},
       }) {
    EXPECT_EQ(mayBecomeAnother(row.instanceName, row.className), row.expected)
        << row.instanceName << ", " << row.className;
  }
}

}  // namespace
}  // namespace keyvora::x11

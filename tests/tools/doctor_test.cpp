#include "tools/doctor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "hosts/simulated/host.h"
#include "tools/command.h"
#include "tools/embedded.h"

namespace keyvora::tools {
namespace {

constexpr auto mappings = "/Users/me/Library/Application Support/keyvora/mappings.json";

class DoctorTest : public testing::Test {
 protected:
  /// Whether nothing keeps sequences from working; the text is in `output`.
  bool works() {
    std::ostringstream out;
    const bool result = examine(host.platform(), out);
    output = out.str();
    return result;
  }

  simulated::Host host;
  std::string output;
};

TEST_F(DoctorTest, WritesWhatIsKnownAndThatNothingIsInTheWay) {
  host.files.write(mappings, R"({"version": 1, "tabs": {}, "sequences": [
      {"keys": "H B", "name": "Borders", "action": {"kind": "keytips", "keys": "HB"}}]})");
  host.diagnosis.known = {{"window manager", "Openbox"}, {"Option keys", "Alt_L (64)"}};
  EXPECT_TRUE(works());
  EXPECT_EQ(output, "version             " + std::string(embedded::version) + R"(
window manager      Openbox
Option keys         Alt_L (64)
document            /Users/me/Library/Application Support/keyvora/mappings.json, 1 sequence
log                 /Users/me/Library/Logs/keyvora.log

Nothing that is known here keeps sequences from working.
)");
  EXPECT_EQ(host.diagnosis.target, "com.microsoft.Excel");
  EXPECT_EQ(host.diagnosis.document, mappings);
}

TEST_F(DoctorTest, WhatKeepsSequencesFromWorkingIsSaidWithItsRemedy) {
  host.diagnosis.found = {{"Sticky Keys", "They are on.", "Switch them off.", true}};
  EXPECT_FALSE(works());
  EXPECT_TRUE(output.ends_with("\n\nSticky Keys: They are on.\n  Switch them off.\n")) << output;
}

TEST_F(DoctorTest, WhatOnlyNeedsToBeKnownIsNoReasonToFail) {
  host.diagnosis.found = {{"Wayland", "Some work.", "Start it otherwise.", false}};
  EXPECT_TRUE(works());
  EXPECT_THAT(output, testing::HasSubstr("\nWayland: Some work.\n  Start it otherwise.\n"));
}

TEST_F(DoctorTest, ADocumentThatDoesNotLoadIsShownWithItsErrors) {
  host.files.write(mappings, R"({"version": 1, "tabs": {}, "sequences": [{}]})");
  EXPECT_FALSE(works());
  EXPECT_THAT(output, testing::HasSubstr("mappings.json, which does not load\n"));
  EXPECT_THAT(output, testing::HasSubstr("mappings.json:1:"));
  EXPECT_THAT(output, testing::HasSubstr(": error: "));
}

TEST_F(DoctorTest, ADocumentThatCannotBeReadIsSaid) {
  host.files.write(mappings, "{}");
  host.failures.always(simulated::Call::read);
  EXPECT_FALSE(works());
  EXPECT_THAT(output, testing::HasSubstr("mappings.json, which cannot be read\n"));
}

TEST_F(DoctorTest, ADocumentThatIsStillToBeMadeIsNoReasonToFailAndIsNotMade) {
  EXPECT_TRUE(works());
  EXPECT_THAT(output, testing::HasSubstr("mappings.json, which the first start makes\n"));
  EXPECT_FALSE(host.files.exists(mappings));
}

TEST_F(DoctorTest, WithoutAHomeItSaysSo) {
  host.failures.always(simulated::Call::applicationSupportDirectory);
  EXPECT_FALSE(works());
}

TEST_F(DoctorTest, ABuildWithoutAHostCannotLook) {
  std::ostringstream out;
  std::ostringstream error;
  const std::vector<std::string> arguments{"doctor"};
  EXPECT_EQ(run(arguments, {out, error}), exit_status::failed);
  EXPECT_EQ(error.str(), "keyvora-mappings: this build knows nothing of the system that it runs on\n");
}

}  // namespace
}  // namespace keyvora::tools

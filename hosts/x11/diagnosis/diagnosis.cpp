#include "hosts/x11/diagnosis/diagnosis.h"

#include "hosts/x11/accessibility/accessibility_bus.h"
#include "hosts/x11/diagnosis/document_access.h"
#include "hosts/x11/diagnosis/facts.h"
#include "hosts/x11/diagnosis/option_grabs.h"
#include "hosts/x11/diagnosis/window_manager.h"
#include "hosts/x11/display.h"
#include "hosts/x11/keyboard/sticky_keys.h"
#include "hosts/x11/toolkit.h"

namespace keyvora::x11 {
namespace {

using platform::Finding;

void add(std::vector<Finding>& findings, bool isSo, Finding finding) {
  if (isSo) findings.push_back(std::move(finding));
}

Finding noWindowManager() {
  if (isWaylandSession()) {
    return {.name = "no window manager",
            .sentence =
                "This is a Wayland session whose compositor does not tell which X window is in front: "
                "key sequences do not work.",
            .remedy = "They do in the sessions of GNOME and KDE.",
            .stopsSequences = true};
  }
  return {
      .name = "no window manager",
      .sentence = "Nothing tells which window is in front, so no sequence starts.",
      .remedy = "Start a window manager that sets _NET_ACTIVE_WINDOW and _NET_CLIENT_LIST, such as openbox.",
      .stopsSequences = true};
}

Finding wayland() {
  return {.name = "Wayland",
          .sentence =
              "This is a Wayland session: key sequences work in applications that run through XWayland, "
              "and in no others.",
          .remedy =
              "Start the spreadsheet with \"GDK_BACKEND=x11 gnumeric\" or "
              "\"GDK_BACKEND=x11 QT_QPA_PLATFORM=xcb libreoffice --calc\".",
          .stopsSequences = false};
}

void addOfDisplay(std::vector<Finding>& findings, Connection& connection) {
  const bool tells = tellsFrontWindow(connection.get());
  add(findings, !tells, noWindowManager());
  add(findings, tells && isWaylandSession(), wayland());
  add(findings, anotherHoldsOption(connection),
      {.name = "another program holds the Option key",
       .sentence = "A tap of Option goes to that program and starts no sequence.",
       .remedy =
           "Take Option (Alt) alone out of the shortcuts of the desktop, of launchers and of remappers.",
       .stopsSequences = true});
  add(findings, stickyKeysAreOn(connection.get()),
      {.name = "Sticky Keys",
       .sentence = "They are on: a tap of Option is meant for the next key and starts no sequence.",
       .remedy = "Switch them off in the accessibility settings of the desktop.",
       .stopsSequences = true});
}

}  // namespace

std::vector<Finding> Diagnosis::findings(const std::filesystem::path& document) {
  std::vector<Finding> findings;
  if (const auto problem = displayProblem(displayName_)) {
    add(findings, true,
        {.name = "no display to work on",
         .sentence = *problem + " Key sequences do not work.",
         .remedy = "Start keyvora in a session of X11, or of Wayland with XWayland.",
         .stopsSequences = true});
  } else if (const auto connection = Connection::open(displayName_)) {
    addOfDisplay(findings, *connection);
  }
  add(findings, !hasAccessibilityBus(),
      {.name = "no accessibility bus",
       .sentence = "Actions of the kind menu do not work, all others do.",
       .remedy = "Install at-spi2-core and log in again.",
       .stopsSequences = true});
  if (auto foreign = foreignDocument(document)) findings.push_back(std::move(*foreign));
  return findings;
}

/// A program that starts at login may be there before the window manager.
void Diagnosis::whenDesktopIsUp(const std::function<void()>& block) {
  wait_ = WindowManagerWait::start(displayName_, loop_, limit_, [this, block] {
    wait_.reset();
    block();
  });
  if (!wait_) block();
}

std::vector<platform::Fact> Diagnosis::facts(std::string_view target) {
  std::vector<platform::Fact> facts;
  if (const auto connection = Connection::open(displayName_)) {
    facts = displayFacts(*connection);
  } else {
    facts.push_back({"display", "none"});
  }
  facts.push_back({"accessibility bus", hasAccessibilityBus() ? "there" : "none"});
  for (auto& fact : programFacts(applications_, target)) facts.push_back(std::move(fact));
  return facts;
}

}  // namespace keyvora::x11

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "hosts/x11/accessibility/accessibility.h"
#include "hosts/x11/accessibility/accessibility_bus.h"
#include "hosts/x11/diagnosis/diagnosis.h"
#include "hosts/x11/gobject.h"
#include "hosts/x11/keyboard/current_tap.h"
#include "hosts/x11/loop/main_loop.h"
#include "tests/x11/private_session.h"
#include "tests/x11/recording_console.h"

namespace keyvora::x11 {
namespace {

/// A message filter that leaves calls unanswered.
GDBusMessage* dropCalls(GDBusConnection* /*connection*/, GDBusMessage* message, gboolean incoming,
                        gpointer /*data*/) {
  const bool isCall = g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL;
  if (incoming == FALSE || !isCall) return message;
  g_object_unref(message);
  return nullptr;
}

TEST(NoAccessibilityBus, ThereIsNoMenuBarAndThatIsFound) {
  PrivateSession session;
  session.endBuses();
  RecordingConsole console;
  Notices notices(console);
  CurrentTap tap;
  TargetWindow targetWindow;
  MainLoop loop;
  Applications applications("", targetWindow);
  Accessibility accessibility(notices, applications, tap);
  for (int time = 0; time < 2; ++time) {
    EXPECT_NE(accessibility.application(getpid())->attribute("AXMenuBar").error, 0);
    EXPECT_TRUE(accessibility.isTrustedPrompting()) << "key sequences work all the same";
  }
  EXPECT_EQ(console.records, std::vector<std::string>{}) << "it is among the findings";
  const auto found = Diagnosis("", applications, loop).findings(session.home() / "Library" / "mappings.json");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].name, "no accessibility bus");
  EXPECT_EQ(found[0].sentence, "Actions of the kind menu do not work, all others do.");
  EXPECT_TRUE(found[0].stopsSequences);
}

TEST(NoAccessibilityBus, OneThatDoesNotAnswerInTimeIsNotSaidToBeMissing) {
  PrivateSession session;
  GError* raw = nullptr;
  const GObjectRef<GDBusConnection> late(g_dbus_connection_new_for_address_sync(
      std::getenv("DBUS_SESSION_BUS_ADDRESS"),
      GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                           G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, &raw));
  const GErrorRef error(raw);
  ASSERT_TRUE(late) << error->message;
  g_dbus_connection_add_filter(late.get(), dropCalls, nullptr, nullptr);
  const GVariantRef owned(g_dbus_connection_call_sync(
      late.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
      g_variant_new("(su)", "org.a11y.Bus", 0), G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
      nullptr));
  ASSERT_TRUE(owned);
  EXPECT_TRUE(hasAccessibilityBus());
}

}  // namespace
}  // namespace keyvora::x11

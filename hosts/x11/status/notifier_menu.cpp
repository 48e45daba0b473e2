#include "hosts/x11/status/notifier_menu.h"

#include <algorithm>
#include <string>
#include <utility>

#include "text/utf8.h"

namespace keyvora::x11 {
namespace {

constexpr auto description = R"xml(
<node><interface name="com.canonical.dbusmenu">
  <property name="Version" type="u" access="read"/>
  <property name="TextDirection" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="IconThemePath" type="as" access="read"/>
  <method name="GetLayout">
    <arg type="i" name="parentId" direction="in"/>
    <arg type="i" name="recursionDepth" direction="in"/>
    <arg type="as" name="propertyNames" direction="in"/>
    <arg type="u" name="revision" direction="out"/>
    <arg type="(ia{sv}av)" name="layout" direction="out"/>
  </method>
  <method name="GetGroupProperties">
    <arg type="ai" name="ids" direction="in"/>
    <arg type="as" name="propertyNames" direction="in"/>
    <arg type="a(ia{sv})" name="properties" direction="out"/>
  </method>
  <method name="GetProperty">
    <arg type="i" name="id" direction="in"/>
    <arg type="s" name="name" direction="in"/>
    <arg type="v" name="value" direction="out"/>
  </method>
  <method name="Event">
    <arg type="i" name="id" direction="in"/>
    <arg type="s" name="eventId" direction="in"/>
    <arg type="v" name="data" direction="in"/>
    <arg type="u" name="timestamp" direction="in"/>
  </method>
  <method name="EventGroup">
    <arg type="a(isvu)" name="events" direction="in"/>
    <arg type="ai" name="idErrors" direction="out"/>
  </method>
  <method name="AboutToShow">
    <arg type="i" name="id" direction="in"/>
    <arg type="b" name="needUpdate" direction="out"/>
  </method>
  <method name="AboutToShowGroup">
    <arg type="ai" name="ids" direction="in"/>
    <arg type="ai" name="updatesNeeded" direction="out"/>
    <arg type="ai" name="idErrors" direction="out"/>
  </method>
  <signal name="ItemsPropertiesUpdated">
    <arg type="a(ia{sv})" name="updatedProps"/>
    <arg type="a(ias)" name="removedProps"/>
  </signal>
  <signal name="LayoutUpdated">
    <arg type="u" name="revision"/>
    <arg type="i" name="parent"/>
  </signal>
</interface></node>
)xml";

/// The identifier of the menu itself.
constexpr int root = 0;

constexpr unsigned protocolVersion = 3;

GVariant* property(std::string_view name) {
  if (name == "Version") return g_variant_new_uint32(protocolVersion);
  if (name == "TextDirection") return g_variant_new_string("ltr");
  if (name == "Status") return g_variant_new_string("normal");
  if (name == "IconThemePath") return g_variant_new_strv(nullptr, 0);
  return nullptr;
}

/// A title in the protocol's form: a single underscore would mark the letter after it as an access key.
std::string labelOf(const std::string& title) {
  std::string label;
  for (const char c : text::validText(title)) {
    label += c;
    if (c == '_') label += '_';
  }
  return label;
}

void add(GVariantBuilder& builder, const char* name, GVariant* value) {
  g_variant_builder_add(&builder, "{sv}", name, value);
}

GVariant* shortcut(char letter) {
  const char name[] = {letter, '\0'};
  GVariantBuilder presses;
  g_variant_builder_init(&presses, G_VARIANT_TYPE("aas"));
  g_variant_builder_open(&presses, G_VARIANT_TYPE("as"));
  g_variant_builder_add(&presses, "s", "Control");
  g_variant_builder_add(&presses, "s", name);
  g_variant_builder_close(&presses);
  return g_variant_builder_end(&presses);
}

bool looksTheSame(const platform::MenuRow& one, const platform::MenuRow& other) {
  return one.title == other.title && one.keyEquivalent == other.keyEquivalent &&
         one.isEnabled() == other.isEnabled() && one.checked == other.checked &&
         one.isSeparator == other.isSeparator;
}

GVariant* noNumbers() {
  return g_variant_new_array(G_VARIANT_TYPE_INT32, nullptr, 0);
}

}  // namespace

NotifierMenu::NotifierMenu(GDBusConnection* bus, std::function<void(bool)> onTracking,
                           std::function<void(std::function<void()>)> run)
    : object_(bus, path, description,
              {[this](std::string_view method, GVariant* parameters) { return call(method, parameters); },
               property}),
      onTracking_(std::move(onTracking)),
      run_(std::move(run)) {}

void NotifierMenu::setRows(const platform::Menu& menu) {
  const bool same =
      std::equal(rows_.begin(), rows_.end(), menu.rows.begin(), menu.rows.end(),
                 [](const auto& shown, const auto& row) { return looksTheSame(shown.second, row); });
  if (same) {
    auto row = menu.rows.begin();
    for (auto& [identifier, shown] : rows_) shown = *row++;  // the actions are other ones
    return;
  }
  rows_.clear();
  for (const auto& row : menu.rows) rows_.emplace(nextIdentifier_++, row);
  object_.emit("LayoutUpdated", g_variant_new("(ui)", ++revision_, root));
}

bool NotifierMenu::isKnown(int identifier) const {
  return identifier == root || rows_.contains(identifier);
}

GVariant* NotifierMenu::call(std::string_view method, GVariant* parameters) {
  if (method == "GetLayout") return getLayout(parameters);
  if (method == "GetGroupProperties") return getGroupProperties(parameters);
  if (method == "GetProperty") {
    int identifier = 0;
    const char* name = nullptr;
    g_variant_get(parameters, "(i&s)", &identifier, &name);
    const GVariantRef all(g_variant_ref_sink(propertiesOf(identifier)));
    const GVariantRef value(g_variant_lookup_value(all.get(), name, nullptr));
    return g_variant_new("(v)", value ? value.get() : g_variant_new_string(""));
  }
  if (method == "Event") return event(parameters);
  if (method == "EventGroup") return eventGroup(parameters);
  if (method == "AboutToShow") return g_variant_new("(b)", FALSE);
  if (method == "AboutToShowGroup") return g_variant_new("(@ai@ai)", noNumbers(), noNumbers());
  return nullptr;
}

GVariant* NotifierMenu::getLayout(GVariant* parameters) const {
  int parent = 0;
  int depth = 0;
  g_variant_get(parameters, "(ii@as)", &parent, &depth, nullptr);
  return g_variant_new("(u@(ia{sv}av))", revision_, layoutOf(parent, depth != 0));
}

GVariant* NotifierMenu::layoutOf(int identifier, bool withChildren) const {
  GVariantBuilder children;
  g_variant_builder_init(&children, G_VARIANT_TYPE("av"));
  if (identifier == root && withChildren) {
    for (const auto& [child, row] : rows_) g_variant_builder_add(&children, "v", layoutOf(child, false));
  }
  return g_variant_new("(i@a{sv}av)", identifier, propertiesOf(identifier), &children);
}

GVariant* NotifierMenu::propertiesOf(int identifier) const {
  GVariantBuilder properties;
  g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
  const auto found = rows_.find(identifier);
  if (identifier == root) {
    add(properties, "children-display", g_variant_new_string("submenu"));
  } else if (found != rows_.end() && found->second.isSeparator) {
    add(properties, "type", g_variant_new_string("separator"));
  } else if (found != rows_.end()) {
    const auto& row = found->second;
    add(properties, "label", g_variant_new_string(labelOf(row.title).c_str()));
    add(properties, "enabled", g_variant_new_boolean(row.isEnabled()));
    if (row.keyEquivalent != 0) add(properties, "shortcut", shortcut(row.keyEquivalent));
    if (row.checked) {
      add(properties, "toggle-type", g_variant_new_string("checkmark"));
      add(properties, "toggle-state", g_variant_new_int32(1));
    }
  }
  return g_variant_builder_end(&properties);
}

GVariant* NotifierMenu::getGroupProperties(GVariant* parameters) const {
  GVariantBuilder groups;
  g_variant_builder_init(&groups, G_VARIANT_TYPE("a(ia{sv})"));
  const auto append = [&](int identifier) {
    g_variant_builder_add(&groups, "(i@a{sv})", identifier, propertiesOf(identifier));
  };
  const GVariantRef asked(g_variant_get_child_value(parameters, 0));
  if (g_variant_n_children(asked.get()) == 0) {  // an empty list means all
    append(root);
    for (const auto& [identifier, row] : rows_) append(identifier);
  }
  for (gsize index = 0; index < g_variant_n_children(asked.get()); ++index) {
    int identifier = 0;
    g_variant_get_child(asked.get(), index, "i", &identifier);
    if (isKnown(identifier)) append(identifier);
  }
  return g_variant_new("(a(ia{sv}))", &groups);
}

GVariant* NotifierMenu::event(GVariant* parameters) {
  int identifier = 0;
  const char* what = nullptr;
  g_variant_get(parameters, "(i&s@vu)", &identifier, &what, nullptr, nullptr);
  happened(identifier, what);
  return g_variant_new_tuple(nullptr, 0);
}

GVariant* NotifierMenu::eventGroup(GVariant* parameters) {
  GVariantBuilder unknown;
  g_variant_builder_init(&unknown, G_VARIANT_TYPE("ai"));
  const GVariantRef events(g_variant_get_child_value(parameters, 0));
  for (gsize index = 0; index < g_variant_n_children(events.get()); ++index) {
    int identifier = 0;
    const char* what = nullptr;
    g_variant_get_child(events.get(), index, "(i&s@vu)", &identifier, &what, nullptr, nullptr);
    if (!happened(identifier, what)) g_variant_builder_add(&unknown, "i", identifier);
  }
  return g_variant_new("(ai)", &unknown);
}

/// False for a row that does not exist or was replaced.
bool NotifierMenu::happened(int identifier, std::string_view what) {
  if (!isKnown(identifier)) return false;
  if (identifier == root) {
    if (what == "opened") onTracking_(true);
    if (what == "closed") onTracking_(false);
    return true;
  }
  const auto& row = rows_.at(identifier);
  if (what == "clicked" && row.isEnabled()) {
    onTracking_(false);
    run_(row.action);
  }
  return true;
}

}  // namespace keyvora::x11

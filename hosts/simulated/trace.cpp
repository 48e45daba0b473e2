#include "hosts/simulated/trace.h"

#include <iomanip>

namespace keyvora::simulated {
namespace {

struct Printer {
  std::ostream& out;

  void print(const platform::KeyEvent& event) const {
    out << "{type " << event.type << ", key " << event.keyCode << ", flags 0x" << std::hex << event.flags
        << ", user data 0x" << event.userData << std::dec << "}";
  }

  void operator()(const trace::Console& entry) const { out << "Console " << std::quoted(entry.record); }
  void operator()(const trace::Posted& entry) const {
    out << "Posted ";
    if (entry.process) {
      out << "to " << *entry.process << " ";
    } else {
      out << "to hardware ";
    }
    print(entry.event);
  }
  void operator()(const trace::Tapped& entry) const {
    out << "Tapped ";
    print(entry.event);
    out << (entry.verdict == platform::Verdict::pass ? " pass" : " swallow");
  }
  void operator()(const trace::Slept& entry) const { out << "Slept " << entry.time.count() << " us"; }
  void operator()(const trace::TapEnabled&) const { out << "TapEnabled"; }
  void operator()(const trace::Performed& entry) const {
    out << "Performed " << entry.action << " on " << std::quoted(entry.element);
  }
  void operator()(const trace::AskedForTrust&) const { out << "AskedForTrust"; }
  void operator()(const trace::ScriptRun& entry) const { out << "ScriptRun " << std::quoted(entry.source); }
  void operator()(const trace::TitleShown& entry) const { out << "TitleShown " << std::quoted(entry.title); }
  void operator()(const trace::MenuShown& entry) const {
    out << "MenuShown";
    for (const auto& title : entry.titles) out << " " << std::quoted(title);
  }
  void operator()(const trace::FileOpened& entry) const { out << "FileOpened " << entry.path; }
  void operator()(const trace::AddressOpened& entry) const { out << "AddressOpened " << entry.address; }
  void operator()(const trace::Printed& entry) const { out << "Printed " << std::quoted(entry.line); }
  void operator()(const trace::Exited& entry) const { out << "Exited " << entry.status; }
  void operator()(const trace::DelegateSet&) const { out << "DelegateSet"; }
  void operator()(const trace::PolicySet& entry) const {
    out << "PolicySet " << static_cast<int>(entry.policy);
  }
  void operator()(const trace::Activated&) const { out << "Activated"; }
  void operator()(const trace::LoginChanged& entry) const {
    out << "LoginChanged " << (entry.registered ? "register" : "unregister");
  }
  void operator()(const trace::UpdaterCalled& entry) const {
    static constexpr const char* names[] = {"created", "started", "checked", "probed"};
    out << "UpdaterCalled " << names[static_cast<int>(entry.what)];
  }
  void operator()(const trace::Note& entry) const { out << "Note " << std::quoted(entry.text); }
};

}  // namespace

void PrintTo(const TraceEntry& entry, std::ostream* out) {
  std::visit(Printer{*out}, entry);
}

void Trace::add(TraceEntry entry) {
  const std::scoped_lock lock(mutex_);
  if (!stopped_) entries_.push_back(std::move(entry));
}

std::vector<TraceEntry> Trace::entries() const {
  const std::scoped_lock lock(mutex_);
  return entries_;
}

std::vector<TraceEntry> Trace::take() {
  const std::scoped_lock lock(mutex_);
  return std::exchange(entries_, {});
}

std::vector<std::string> Trace::logged() const {
  std::vector<std::string> messages;
  for (const auto& entry : of<trace::Console>()) messages.emplace_back(messageOf(entry));
  return messages;
}

void Trace::stop() {
  const std::scoped_lock lock(mutex_);
  stopped_ = true;
}

std::string_view messageOf(const trace::Console& entry) {
  std::string_view message = entry.record;
  constexpr std::string_view prefix = "keyvora: ";
  if (message.starts_with(prefix)) message.remove_prefix(prefix.size());
  return message;
}

}  // namespace keyvora::simulated

#include "hosts/x11/loop/agenda.h"

#include <algorithm>
#include <utility>

namespace keyvora::x11 {

GSourceFuncs Agenda::functions{prepare, check, run, nullptr, nullptr, nullptr};

Agenda::Agenda() : source_(g_source_new(&functions, sizeof(Source))) {
  reinterpret_cast<Source*>(source_)->agenda = this;
  g_source_set_can_recurse(source_, TRUE);  // a block may run the loop
  g_source_attach(source_, nullptr);
}

Agenda::~Agenda() {
  g_source_destroy(source_);
  g_source_unref(source_);
}

void Agenda::add(Microseconds due, std::function<void()> block) {
  {
    const std::scoped_lock lock(mutex_);
    blocks_.emplace(due, std::move(block));
  }
  // On the loop's own thread it looks at the agenda before it waits again.
  if (isMainThread()) {
    ++additions_;
  } else {
    g_main_context_wakeup(nullptr);
  }
}

std::optional<Agenda::Microseconds> Agenda::firstDue() {
  const std::scoped_lock lock(mutex_);
  if (blocks_.empty()) return std::nullopt;
  return blocks_.begin()->first;
}

Agenda& Agenda::of(GSource* source) {
  return *reinterpret_cast<Source*>(source)->agenda;
}

gboolean Agenda::prepare(GSource* source, gint* milliseconds) {
  const auto left = of(source).untilFirst(g_source_get_time(source));
  *milliseconds = left ? gint(std::clamp<Microseconds>((*left + 999) / 1000, 0, G_MAXINT)) : -1;
  return left && *left <= 0 ? TRUE : FALSE;
}

gboolean Agenda::check(GSource* source) {
  const auto left = of(source).untilFirst(g_source_get_time(source));
  return left && *left <= 0 ? TRUE : FALSE;
}

gboolean Agenda::run(GSource* source, GSourceFunc /*callback*/, gpointer /*data*/) {
  of(source).runFirst();
  return G_SOURCE_CONTINUE;
}

/// How long it is until a block is due; none without a block.
std::optional<Agenda::Microseconds> Agenda::untilFirst(Microseconds now) {
  const auto due = firstDue();
  return due ? std::optional(*due - now) : std::nullopt;
}

void Agenda::runFirst() {
  const auto first = takeFirst();
  first.mapped()();
}

Agenda::Blocks::node_type Agenda::takeFirst() {
  const std::scoped_lock lock(mutex_);
  return blocks_.extract(blocks_.begin());
}

}  // namespace keyvora::x11

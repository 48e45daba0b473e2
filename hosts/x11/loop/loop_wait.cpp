#include "hosts/x11/loop/loop_wait.h"

#include <algorithm>
#include <utility>

namespace keyvora::x11 {
namespace {

using Microseconds = LoopWait::Microseconds;

/// GLib gives its function for waiting no data.
LoopWait* current = nullptr;

std::optional<Microseconds> earlier(std::optional<Microseconds> one, std::optional<Microseconds> other) {
  if (!one || !other) return one ? one : other;
  return std::min(*one, *other);
}

bool isOver(std::optional<Microseconds> moment) {
  return moment && *moment <= g_get_monotonic_time();
}

/// For poll(2): rounded up, so that the moment has come afterwards; -1 for no moment.
int millisecondsUntil(std::optional<Microseconds> moment) {
  if (!moment) return -1;
  return int(std::clamp<Microseconds>((*moment - g_get_monotonic_time() + 999) / 1000, 0, G_MAXINT));
}

}  // namespace

LoopWait::LoopWait(Agenda& agenda) : agenda_(agenda), previous_(std::exchange(current, this)) {
  g_main_context_set_poll_func(nullptr, wait);
}

LoopWait::~LoopWait() {
  current = previous_;
  if (current == nullptr) g_main_context_set_poll_func(nullptr, nullptr);
}

void LoopWait::add(Worker& worker) {
  places_.push_back({&worker, false});
}

void LoopWait::remove(Worker& worker) {
  std::erase_if(places_, [&](const Place& place) { return place.worker == &worker; });
}

gint LoopWait::wait(GPollFD* descriptors, guint count, gint milliseconds) {
  return current->waitAndWork(descriptors, count, milliseconds);
}

/// Returns like poll(2): when the context has something to look at, or when its time is over.
gint LoopWait::waitAndWork(GPollFD* descriptors, guint count, gint milliseconds) {
  std::optional<Microseconds> limit;
  if (milliseconds >= 0) limit = g_get_monotonic_time() + Microseconds{milliseconds} * 1000;
  for (;;) {
    // Asked each time: work may have put a block on the agenda.
    const auto turn = earlier(limit, agenda_.firstDue());
    const int ready = poll(descriptors, count, turn);
    if (ready < 0) return ready;
    const bool turns = work();
    if (ready > 0 || turns || isOver(turn)) return ready;
  }
}

/// Waits until a descriptor is ready or a worker is due, at most until `end`. How many of the context's
/// descriptors are ready; negative for an error.
int LoopWait::poll(GPollFD* descriptors, guint count, std::optional<Microseconds> end) {
  polled_.clear();
  for (guint index = 0; index < count; ++index) {
    polled_.push_back({descriptors[index].fd, short(descriptors[index].events), 0});
  }
  for (const auto& place : places_) {
    polled_.push_back({place.worker->descriptor(), POLLIN, 0});
    end = earlier(end, place.worker->due());
  }
  int ready = ::poll(polled_.data(), polled_.size(), millisecondsUntil(end));
  if (ready < 0) return ready;
  for (guint index = 0; index < count; ++index) descriptors[index].revents = gushort(polled_[index].revents);
  for (std::size_t index = 0; index < places_.size(); ++index) {
    places_[index].isReadable = polled_[count + index].revents != 0;
    if (places_[index].isReadable) --ready;
  }
  return ready;
}

/// True when the loop has to take a turn. The places may change meanwhile; what is left out then comes with
/// the next wait.
bool LoopWait::work() {
  bool turns = false;
  for (std::size_t index = 0; index < places_.size(); ++index) {
    auto& place = places_[index];
    if (!std::exchange(place.isReadable, false) && !isOver(place.worker->due())) continue;
    const auto before = agenda_.additions();
    const bool ranOtherCode = place.worker->work();
    turns = turns || (ranOtherCode && agenda_.additions() == before);
  }
  return turns;
}

}  // namespace keyvora::x11

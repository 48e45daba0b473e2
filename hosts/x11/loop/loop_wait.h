#pragma once

#include <glib.h>
#include <poll.h>

#include <optional>
#include <vector>

#include "hosts/x11/loop/agenda.h"

namespace keyvora::x11 {

/// What the main thread does while GLib's default main context waits: small work of the host that takes no
/// turn of the loop. In a turn every library of the program looks at its connections, which costs several
/// times what such work does. Takes the place of the context's function for waiting. Main thread.
class LoopWait {
 public:
  using Microseconds = Agenda::Microseconds;

  class Worker {
   public:
    virtual ~Worker() = default;

    /// Readable when there is work.
    [[nodiscard]] virtual int descriptor() const = 0;

    /// When there is work, whatever the descriptor says: a moment of GLib's monotonic clock.
    [[nodiscard]] virtual std::optional<Microseconds> due() const = 0;

    /// Does all that there is to do. May add and remove workers. True when other code of the program ran: the
    /// loop then takes a turn, to see what that code has changed, unless the code put a block on the agenda.
    /// Then the turn is that block's.
    virtual bool work() = 0;
  };

  explicit LoopWait(Agenda& agenda);
  ~LoopWait();
  LoopWait(const LoopWait&) = delete;
  LoopWait& operator=(const LoopWait&) = delete;

  /// From now on `worker` works whenever the loop waits, until it is removed.
  void add(Worker& worker);
  void remove(Worker& worker);

 private:
  struct Place {
    Worker* worker;
    bool isReadable;
  };

  static gint wait(GPollFD* descriptors, guint count, gint milliseconds);
  gint waitAndWork(GPollFD* descriptors, guint count, gint milliseconds);
  int poll(GPollFD* descriptors, guint count, std::optional<Microseconds> end);
  bool work();

  Agenda& agenda_;
  /// Of several, the context waits in the youngest.
  LoopWait* const previous_;
  std::vector<Place> places_;
  /// Those of the context, then one for each worker.
  std::vector<pollfd> polled_;
};

}  // namespace keyvora::x11

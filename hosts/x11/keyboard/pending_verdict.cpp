#include "hosts/x11/keyboard/pending_verdict.h"

#include "hosts/x11/tap/tap_thread.h"

namespace keyvora::x11 {

void settlePendingVerdict() {
  if (const auto tap = TapThread::existing()) tap->handover().settle();
}

}  // namespace keyvora::x11

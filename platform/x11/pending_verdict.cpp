#include "platform/x11/pending_verdict.h"

#include "platform/x11/tap_thread.h"

namespace keyvora::x11 {

void settlePendingVerdict() {
  if (const auto tap = TapThread::existing()) tap->handover().settle();
}

}  // namespace keyvora::x11

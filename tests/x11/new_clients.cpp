#include "tests/x11/new_clients.h"

#include <X11/extensions/record.h>

#include <stdexcept>

namespace keyvora::x11 {
namespace {

void countStart(char* count, XRecordInterceptData* data) {
  if (data->category == XRecordClientStarted) ++*reinterpret_cast<int*>(count);
  XRecordFreeData(data);
}

}  // namespace

NewClients::NewClients() {
  int major = 0;
  int minor = 0;
  if (XRecordQueryVersion(control_->get(), &major, &minor) == 0) throw std::runtime_error("no RECORD");
  XRecordRange* range = XRecordAllocRange();
  range->client_started = True;
  XRecordClientSpec clients = XRecordFutureClients;
  context_ = XRecordCreateContext(control_->get(), 0, &clients, 1, &range, 1);
  XFree(range);
  XSync(control_->get(), False);
  if (XRecordEnableContextAsync(reports_->get(), context_, countStart, reinterpret_cast<char*>(&count_)) ==
      0) {
    throw std::runtime_error("RECORD does not record");
  }
  XFlush(reports_->get());
  // From when the server has enabled it on.
  XRecordState* state = nullptr;
  bool enabled = false;
  while (!enabled && XRecordGetContext(control_->get(), context_, &state) != 0) {
    enabled = state->enabled != 0;
    XRecordFreeState(state);
  }
}

NewClients::~NewClients() {
  XRecordDisableContext(control_->get(), context_);
  XRecordFreeContext(control_->get(), context_);
  XSync(control_->get(), False);
  count();
}

int NewClients::count() {
  XRecordProcessReplies(reports_->get());
  return count_;
}

}  // namespace keyvora::x11

#include "hosts/x11/updates/fetch_process.h"

#include <gio/gio.h>

#include <utility>

#include "hosts/x11/gobject.h"
#include "hosts/x11/updates/fetch/answer.h"

namespace keyvora::x11 {
namespace {

using Done = std::function<void(appcast::Fetched)>;

struct BytesUnref {
  void operator()(GBytes* bytes) const { g_bytes_unref(bytes); }
};
using BytesRef = std::unique_ptr<GBytes, BytesUnref>;

/// How a program without a valid answer ended, as text for the user.
std::string endOf(GSubprocess* process) {
  if (g_subprocess_get_if_signaled(process))
    return "was ended by signal " + std::to_string(g_subprocess_get_term_sig(process));
  if (g_subprocess_get_if_exited(process))
    return "ended with status " + std::to_string(g_subprocess_get_exit_status(process));
  return "does not answer";
}

/// One running program. The destructor ends it.
class RunningFetch final : public appcast::Fetch {
 public:
  RunningFetch(platform::MainLoop& mainLoop, const std::filesystem::path& program, const std::string& address,
               const appcast::FetchLimits& limits, Done done)
      : waiting_(std::make_shared<Waiting>(Waiting{address, std::move(done)})),
        cancellable_(g_cancellable_new()) {
    const auto bytes = std::to_string(limits.bytes);
    const auto milliseconds = std::to_string(limits.time.count());
    GError* raw = nullptr;
    process_.reset(g_subprocess_new(G_SUBPROCESS_FLAGS_STDOUT_PIPE, &raw, program.c_str(), address.c_str(),
                                    bytes.c_str(), milliseconds.c_str(), nullptr));
    const GErrorRef error(raw);
    if (process_) {
      g_subprocess_communicate_async(process_.get(), nullptr, cancellable_.get(), ended,
                                     new std::weak_ptr<Waiting>(waiting_));
      return;
    }
    const std::string problem = std::string("its program cannot be started: ") + error->message;
    mainLoop.after(platform::Seconds::zero(), [waiting = std::weak_ptr(waiting_), problem] {
      if (const auto asked = waiting.lock()) asked->done({{}, asked->address, problem});
    });
  }

  ~RunningFetch() override {
    g_cancellable_cancel(cancellable_.get());
    if (process_) g_subprocess_force_exit(process_.get());
  }
  RunningFetch(const RunningFetch&) = delete;
  RunningFetch& operator=(const RunningFetch&) = delete;

 private:
  struct Waiting {
    std::string address;
    Done done;
  };

  static void ended(GObject* source, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<std::weak_ptr<Waiting>> reference(static_cast<std::weak_ptr<Waiting>*>(data));
    auto* process = G_SUBPROCESS(source);
    GBytes* output = nullptr;
    g_subprocess_communicate_finish(process, result, &output, nullptr, nullptr);
    const BytesRef owner(output);
    // A reference for the duration of the call, which may destroy the fetch.
    const auto waiting = reference->lock();
    if (!waiting) return;
    std::string_view text;
    if (output != nullptr) {
      gsize size = 0;
      const auto* bytes = static_cast<const char*>(g_bytes_get_data(output, &size));
      text = {bytes, size};
    }
    const bool isWhole = g_subprocess_get_if_exited(process) && g_subprocess_get_exit_status(process) == 0;
    auto fetched = isWhole ? decodeAnswer(text) : std::nullopt;
    if (!fetched) fetched = {{}, waiting->address, "its program " + endOf(process)};
    waiting->done(std::move(*fetched));
  }

  /// The calls in progress have weak references: none of them answers a fetch that was destroyed.
  std::shared_ptr<Waiting> waiting_;
  GObjectRef<GCancellable> cancellable_;
  GObjectRef<GSubprocess> process_;
};

}  // namespace

FetchProcess::FetchProcess(platform::MainLoop& mainLoop, std::filesystem::path program)
    : mainLoop_(mainLoop), program_(std::move(program)) {}

std::unique_ptr<appcast::Fetch> FetchProcess::fetch(const std::string& address,
                                                    const appcast::FetchLimits& limits,
                                                    std::function<void(appcast::Fetched)> done) {
  return std::make_unique<RunningFetch>(mainLoop_, program_, address, limits, std::move(done));
}

}  // namespace keyvora::x11

#include "log/log.h"

#include <memory>
#include <string>
#include <utility>

#include "platform/fatal.h"
#include "platform/platform.h"
#include "platform/shared.h"

namespace keyvora {
namespace {

/// How long the end of the process may wait for records that are not written yet.
constexpr std::chrono::milliseconds exitLimit(2000);

struct Location {
  std::filesystem::path path;
};

std::unique_ptr<Location> locate() {
  const auto library = platform::current().fileSystem.libraryDirectory();
  if (!library) platform::trap();
  return std::make_unique<Location>(Location{*library / "Logs" / "keyvora.log"});
}

/// Writes records one after another on its own queue.
class Writer {
 public:
  Writer() {
    const auto& platform = platform::current();
    queue_ = platform.queues.createSerial(platform.bundles.main().identifier().value_or("keyvora") + ".log");
    platform.process.atExit([queue = std::weak_ptr(queue_)] {
      if (const auto present = queue.lock()) present->drain(exitLimit);
    });
  }

  ~Writer() { queue_->drain(exitLimit); }

  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  void submit(std::string record) {
    queue_->async([this, record = std::move(record)] { write(record); });
  }

  void drain(std::chrono::milliseconds limit) { queue_->drain(limit); }

 private:
  /// Opens the file for every record, so that a user who moves or deletes it gets a new one.
  void write(const std::string& record) const {
    files_.createDirectories(directory_);
    if (!files_.append(url_, record)) files_.replace(url_, record);
  }

  platform::FileSystem& files_ = platform::current().fileSystem;
  const std::filesystem::path& url_ = Log::url();
  const std::filesystem::path directory_ = url_.parent_path();
  /// The last member: destroyed first, because its work uses the others.
  std::shared_ptr<platform::SerialQueue> queue_;
};

Writer& writer() {
  return platform::shared<Writer>([] { return std::make_unique<Writer>(); });
}

}  // namespace

void Log::line(std::string_view message) {
  const auto& platform = platform::current();
  std::string text = "keyvora: ";
  text += message;
  platform.console.write(text);

  text = platform.clock.localTime();
  text.reserve(text.size() + message.size() + 2);
  text += ' ';
  text += message;
  text += '\n';
  writer().submit(std::move(text));
}

const std::filesystem::path& Log::url() {
  return platform::shared<Location>(locate).path;
}

void Log::drain(std::chrono::milliseconds limit) {
  writer().drain(limit);
}

}  // namespace keyvora

#include "hosts/x11/updates/curl_fetcher.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stop_token>
#include <system_error>
#include <thread>
#include <utility>

namespace keyvora::x11 {
namespace {

constexpr long maxRedirects = 5;
constexpr int waitMilliseconds = 1000;  // for the network; a cancellation ends the wait

/// One transfer, set up on the main thread and run on the fetch's thread.
class Transfer {
 public:
  Transfer(std::string address, const appcast::FetchLimits& limits)
      : address_(std::move(address)), limits_(limits), easy_(curl_easy_init()), multi_(curl_multi_init()) {
    setUp();
  }

  ~Transfer() {
    curl_multi_cleanup(multi_);
    curl_easy_cleanup(easy_);
  }
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  appcast::Fetched run(const std::stop_token& stop) {
    if (!isSafe_) return {{}, address_, "the HTTP library lacks what a safe fetch needs"};
    curl_multi_add_handle(multi_, easy_);
    CURLcode code = CURLE_ABORTED_BY_CALLBACK;
    while (!stop.stop_requested()) {
      int running = 0;
      curl_multi_perform(multi_, &running);
      int left = 0;
      if (const CURLMsg* message = curl_multi_info_read(multi_, &left); message != nullptr) {
        code = message->data.result;
        break;
      }
      curl_multi_poll(multi_, nullptr, 0, waitMilliseconds, nullptr);
    }
    curl_multi_remove_handle(multi_, easy_);
    return finish(code);
  }

  /// Makes `run` look at its stop token. Any thread.
  void wake() { curl_multi_wakeup(multi_); }

 private:
  template <class Value>
  CURLcode set(CURLoption option, Value value) {
    return curl_easy_setopt(easy_, option, value);
  }

  /// Sets an option that a fetch requires: the fetch fails if the library does not know it.
  template <class Value>
  void require(CURLoption option, Value value) {
    isSafe_ &= set(option, value) == CURLE_OK;
  }

  void setUp() {
    const bool isSecure = address_.starts_with("https:");
    require(CURLOPT_URL, address_.c_str());
    require(CURLOPT_PROTOCOLS_STR, "http,https");
    require(CURLOPT_REDIR_PROTOCOLS_STR, isSecure ? "https" : "http,https");
    require(CURLOPT_MAXREDIRS, maxRedirects);
    require(CURLOPT_SSL_VERIFYPEER, 1L);
    require(CURLOPT_SSL_VERIFYHOST, 2L);
    const char* authorities = std::getenv("SSL_CERT_FILE");
    if (authorities != nullptr && *authorities != '\0') require(CURLOPT_CAINFO, authorities);
    require(CURLOPT_TIMEOUT_MS, static_cast<long>(limits_.time.count()));
    require(CURLOPT_NOSIGNAL, 1L);
    require(CURLOPT_WRITEDATA, this);
    curl_write_callback write = [](char* data, std::size_t, std::size_t size, void* self) {
      return static_cast<Transfer*>(self)->received({data, size});
    };
    require(CURLOPT_WRITEFUNCTION, write);
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limits_.bytes));
    set(CURLOPT_ACCEPT_ENCODING, "");
    set(CURLOPT_USERAGENT, "keyvora");
    set(CURLOPT_QUICK_EXIT, 1L);  // when cancelled, do not wait for a name server
    set(CURLOPT_ERRORBUFFER, error_.data());
  }

  std::size_t received(std::string_view data) {
    if (data.size() > limits_.bytes - fetched_.bytes.size()) {
      isTooLarge_ = true;
      return 0;
    }
    fetched_.bytes += data;
    return data.size();
  }

  appcast::Fetched finish(CURLcode code) {
    long status = 0;
    curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
    const char* address = nullptr;
    curl_easy_getinfo(easy_, CURLINFO_EFFECTIVE_URL, &address);
    fetched_.address = address != nullptr ? address : address_;
    if (isTooLarge_ || code == CURLE_FILESIZE_EXCEEDED) {
      fetched_.error = "it is larger than " + std::to_string(limits_.bytes) + " bytes";
    } else if (code == CURLE_OPERATION_TIMEDOUT) {
      fetched_.error = "it took longer than " + std::to_string(limits_.time.count() / 1000) + " seconds";
    } else if (code == CURLE_TOO_MANY_REDIRECTS) {
      fetched_.error = "the server redirects more than " + std::to_string(maxRedirects) + " times";
    } else if (code != CURLE_OK) {
      fetched_.error = error_.front() != '\0' ? error_.data() : curl_easy_strerror(code);
    } else if (status != 200) {
      fetched_.error = "the server answered with status " + std::to_string(status);
    }
    // Some of these texts contain parts from the server.
    if (fetched_.error)
      std::ranges::replace_if(
          *fetched_.error, [](char c) { return c >= 0 && c < ' '; }, ' ');
    return std::move(fetched_);
  }

  std::string address_;
  appcast::FetchLimits limits_;
  CURL* easy_;
  CURLM* multi_;
  std::array<char, CURL_ERROR_SIZE> error_{};
  appcast::Fetched fetched_;
  bool isSafe_ = true;
  bool isTooLarge_ = false;
};

using Done = std::function<void(appcast::Fetched)>;

class ThreadedFetch final : public appcast::Fetch {
 public:
  ThreadedFetch(platform::MainLoop& mainLoop, const std::string& address, const appcast::FetchLimits& limits,
                Done done)
      : done_(std::make_shared<Done>(std::move(done))), transfer_(address, limits) {
    try {
      thread_ = std::jthread(
          [&mainLoop, &transfer = transfer_, done = std::weak_ptr(done_)](const std::stop_token& stop) {
            const std::stop_callback wake(stop, [&transfer] { transfer.wake(); });
            answer(mainLoop, done, transfer.run(stop));
          });
    } catch (const std::system_error& error) {
      appcast::Fetched nothing;
      nothing.address = address;
      nothing.error = "no thread can be started for it: " + error.code().message();
      answer(mainLoop, done_, std::move(nothing));
    }
  }

 private:
  static void answer(platform::MainLoop& mainLoop, std::weak_ptr<Done> done, appcast::Fetched fetched) {
    mainLoop.after(platform::Seconds::zero(), [done = std::move(done), fetched = std::move(fetched)] {
      // A reference for the duration of the call, which may destroy the fetch.
      if (const auto waiting = done.lock()) (*waiting)(fetched);
    });
  }

  /// Main thread. Reset when the fetch is cancelled.
  std::shared_ptr<Done> done_;
  Transfer transfer_;
  std::jthread thread_;  // the last member: joined before the others are destroyed
};

}  // namespace

CurlFetcher::CurlFetcher(platform::MainLoop& mainLoop) : mainLoop_(mainLoop) {
  static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
  static_cast<void>(initialised);
}

std::unique_ptr<appcast::Fetch> CurlFetcher::fetch(const std::string& address,
                                                   const appcast::FetchLimits& limits,
                                                   std::function<void(appcast::Fetched)> done) {
  return std::make_unique<ThreadedFetch>(mainLoop_, address, limits, std::move(done));
}

}  // namespace keyvora::x11

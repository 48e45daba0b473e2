#include "hosts/x11/updates/fetch/transfer.h"

#include <curl/curl.h>

#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace keyvora::x11 {
namespace {

constexpr long maxRedirects = 5;

class Transfer {
 public:
  Transfer(std::string address, const appcast::FetchLimits& limits, bool (*isAwaited)())
      : address_(std::move(address)), limits_(limits), isAwaited_(isAwaited), easy_(curl_easy_init()) {
    setUp();
  }

  ~Transfer() { curl_easy_cleanup(easy_); }
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  appcast::Fetched run() {
    if (!isSafe_) return {{}, address_, "the HTTP library lacks what a safe fetch needs"};
    return finish(curl_easy_perform(easy_));
  }

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
    require(CURLOPT_NOPROGRESS, 0L);
    require(CURLOPT_XFERINFODATA, this);
    curl_xferinfo_callback progress = [](void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
      return static_cast<Transfer*>(self)->isAwaited_() ? 0 : 1;
    };
    require(CURLOPT_XFERINFOFUNCTION, progress);
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limits_.bytes));
    set(CURLOPT_ACCEPT_ENCODING, "");
    set(CURLOPT_USERAGENT, "keyvora");
    set(CURLOPT_QUICK_EXIT, 1L);  // after the time limit, do not wait for a name server
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
    return std::move(fetched_);
  }

  std::string address_;
  appcast::FetchLimits limits_;
  bool (*isAwaited_)();
  CURL* easy_;
  std::array<char, CURL_ERROR_SIZE> error_{};
  appcast::Fetched fetched_;
  bool isSafe_ = true;
  bool isTooLarge_ = false;
};

}  // namespace

appcast::Fetched transfer(const std::string& address, const appcast::FetchLimits& limits,
                          bool (*isAwaited)()) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  return Transfer(address, limits, isAwaited).run();
}

}  // namespace keyvora::x11

#include <gtest/gtest.h>

#include <optional>

#include "hosts/simulated/host.h"
#include "hosts/x11/updates/curl_fetcher.h"
#include "tests/posix/no_threads.h"

namespace keyvora::x11 {
namespace {

class FetchStartTest : public testing::Test {
 protected:
  std::unique_ptr<appcast::Fetch> fetch() {
    return fetcher.fetch("http://127.0.0.1:1/feed", {}, [this](auto fetched) { answer = fetched; });
  }

  simulated::Host host;
  CurlFetcher fetcher{host.mainLoop};
  std::optional<appcast::Fetched> answer;
  NoThreads refusal;
};

TEST_F(FetchStartTest, WithoutAThreadTheAnswerIsAnErrorFromTheLoop) {
  const auto fetching = fetch();
  EXPECT_EQ(refusal.refused(), 1);
  EXPECT_FALSE(answer);
  host.advance(0);
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->error, "no thread can be started for it: Resource temporarily unavailable");
  EXPECT_EQ(answer->address, "http://127.0.0.1:1/feed");
  EXPECT_EQ(answer->bytes, "");
}

TEST_F(FetchStartTest, WhatWasCancelledMeanwhileIsNotAnswered) {
  fetch().reset();
  host.advance(0);
  EXPECT_FALSE(answer);
}

}  // namespace
}  // namespace keyvora::x11

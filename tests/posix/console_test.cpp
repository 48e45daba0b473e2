#include "hosts/posix/console.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>

#include "tests/support/scratch_directory.h"

namespace keyvora::posix {
namespace {

/// Both ends of a channel.
struct Channel {
  FileDescriptor reader;
  FileDescriptor writer;

  static Channel pipe() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
  }

  static Channel socket() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
  }

  /// Everything written and not read yet.
  std::string take() {
    ::fcntl(reader.number(), F_SETFL, O_NONBLOCK);
    std::string text;
    std::array<char, 65536> part{};
    for (;;) {
      const auto count = ::read(reader.number(), part.data(), part.size());
      if (count <= 0) return text;
      text.append(part.data(), static_cast<std::size_t>(count));
    }
  }

  [[nodiscard]] bool writerWaits() const { return (::fcntl(writer.number(), F_GETFL) & O_NONBLOCK) == 0; }
};

struct PosixConsoleTest : testing::TestWithParam<Channel (*)()> {
  Channel channel = GetParam()();
  Console console{channel.writer.number()};
};

TEST_P(PosixConsoleTest, WritesALineForEachRecord) {
  console.write("keyvora: one");
  console.write("");
  console.write("keyvora: ⌥ zwei");
  EXPECT_EQ(channel.take(), "keyvora: one\n\nkeyvora: ⌥ zwei\n");
}

TEST_P(PosixConsoleTest, DropsWhatDoesNotFitAndNeverWaits) {
  // Nothing reads: this test would hang if a write blocked.
  const std::string record(1000, 'x');
  for (int i = 0; i < 10'000; ++i) console.write(record);
  const auto kept = channel.take();
  EXPECT_GT(kept.size(), record.size());
  EXPECT_LT(kept.size(), 10'000 * record.size());
  console.write("there is room again");
  const auto next = channel.take();
  EXPECT_TRUE(next == "there is room again\n" || next == "\nthere is room again\n") << next;
}

TEST_P(PosixConsoleTest, ARecordLargerThanTheRoomIsCutOffAndTheNextHasALineOfItsOwn) {
  console.write(std::string(4'000'000, 'x'));
  const auto part = channel.take();
  EXPECT_EQ(part.find_first_not_of('x'), std::string::npos);
  EXPECT_FALSE(part.empty());
  console.write("next");
  EXPECT_EQ(channel.take(), "\nnext\n");
}

TEST_P(PosixConsoleTest, LeavesTheSharedFileAsItWas) {
  console.write("one");
  EXPECT_TRUE(channel.writerWaits());
}

TEST_P(PosixConsoleTest, SurvivesTheEndOfItsReader) {
  channel.reader.close();
  console.write("one");
  console.write("two");
}

INSTANTIATE_TEST_SUITE_P(Channels, PosixConsoleTest, testing::Values(&Channel::pipe, &Channel::socket),
                         [](const auto& row) { return row.param == &Channel::pipe ? "Pipe" : "Socket"; });

TEST(PosixConsoleTest, AppendsToAFileWithoutLosingWhatOthersWrite) {
  const test::ScratchDirectory scratch;
  const FileDescriptor file(::open((scratch / "log").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  Console console(file.number());
  ASSERT_EQ(::write(file.number(), "before\n", 7), 7);
  console.write("one");
  ASSERT_EQ(::write(file.number(), "after\n", 6), 6);
  EXPECT_EQ(test::content(scratch / "log"), "before\none\nafter\n");
}

TEST(PosixConsoleTest, WithoutStandardErrorRecordsAreLost) {
  Console console(-1);
  console.write("one");
}

TEST(PosixConsoleTest, WritesToADevice) {
  const FileDescriptor null(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  Console console(null.number());
  console.write("one");
}

}  // namespace
}  // namespace keyvora::posix

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <cerrno>
#include <string>
#include <vector>

#include "hosts/x11/files/directories.h"
#include "hosts/x11/keyboard/current_tap.h"
#include "hosts/x11/keyboard/keyboard.h"
#include "tests/x11/private_display.h"

namespace {

/// The name of the function whose next calls fail, and the errors.
std::string failing;
int failure = 0;

bool fails(const char* name) {
  return failing == name;
}

template <class Function>
Function* original(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// The C library's headers have reserved names for the parameters.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)

// These replace functions of the C library and make them fail.
extern "C" {

int socketpair(int domain, int type, int protocol, int* pair) noexcept {
  if (fails("socketpair")) {
    errno = failure;
    return -1;
  }
  return original<int(int, int, int, int*)>("socketpair")(domain, type, protocol, pair);
}

int posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* files,
                const posix_spawnattr_t* attributes, char* const* arguments, char* const* environment) {
  if (fails("posix_spawn")) return failure;
  return original<int(pid_t*, const char*, const posix_spawn_file_actions_t*, const posix_spawnattr_t*,
                      char* const*, char* const*)>("posix_spawn")(process, path, files, attributes, arguments,
                                                                  environment);
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

namespace keyvora::x11 {
namespace {

class TapStartTest : public testing::Test {
 protected:
  void TearDown() override { failing.clear(); }

  std::unique_ptr<platform::EventTap> createTap(Keyboard& keyboard) {
    keyboard.onFault([this](const std::string& sentence) { faults.push_back(sentence); });
    return keyboard.createTap(0x1C00, [](const platform::KeyEvent&) { return platform::Verdict::pass; });
  }

  PrivateDisplay display;
  CurrentTap current;
  TargetWindow target;
  std::vector<std::string> faults;
};

TEST_F(TapStartTest, WithoutSocketsOrAProcessThereIsNoTapAndThatIsSaidOnce) {
  struct Row {
    const char* call;
    int error;
    std::string said;
  };
  const std::string program = KEYVORA_TAP_PROGRAM;
  for (const auto& row : std::vector<Row>{
           {"socketpair", EMFILE,
            "No sockets for the keyboard's program (Too many open files): key sequences do not work."},
           {"posix_spawn", EAGAIN,
            "The keyboard's program " + program +
                " cannot be started (Resource temporarily unavailable): key sequences do not work."}}) {
    Keyboard keyboard(display.name(), program, current, target);
    faults.clear();
    failing = row.call;
    failure = row.error;
    EXPECT_EQ(createTap(keyboard), nullptr);
    EXPECT_EQ(createTap(keyboard), nullptr);
    EXPECT_EQ(faults, std::vector{row.said});
    failing.clear();
    EXPECT_NE(createTap(keyboard), nullptr) << "asked again later, it works";
  }
}

TEST_F(TapStartTest, AProgramThatIsMissingIsNamed) {
  Keyboard keyboard(display.name(), "/nowhere/keyvora-tap", current, target);
  EXPECT_EQ(createTap(keyboard), nullptr);
  EXPECT_EQ(faults, std::vector<std::string>{
                        "The keyboard's program /nowhere/keyvora-tap cannot be started (No such file "
                        "or directory): key sequences do not work."});
}

TEST_F(TapStartTest, AProgramThatIsNoTapMakesNone) {
  Keyboard keyboard(display.name(), "/bin/true", current, target);
  EXPECT_EQ(createTap(keyboard), nullptr);
}

TEST(TapProgram, IsBesideTheProgramOrInThePrefix) {
  EXPECT_EQ(partOf(std::filesystem::path(KEYVORA_TAP_PROGRAM).parent_path() / "keyvora", "keyvora-tap"),
            KEYVORA_TAP_PROGRAM);
  EXPECT_EQ(partOf("/opt/keyvora/bin/keyvora", "keyvora-tap"), "/opt/keyvora/libexec/keyvora/keyvora-tap");
}

TEST(TapProgram, StartedByHandItSaysWhatItIs) {
  Child program({"sh", "-c", "exec \"$0\" 2>/dev/null", KEYVORA_TAP_PROGRAM}, {});
  const int status = program.wait();
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 2);
}

}  // namespace
}  // namespace keyvora::x11

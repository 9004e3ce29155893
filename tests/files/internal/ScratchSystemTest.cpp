#include <files/ScratchSystem.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/Throws.h>

#include "../TempDirectory.h"

#include <fstream>
#include <thread>
#include <vector>

using namespace Tarvex::VantraCore;
using Experimental::Path;
namespace fs = std::filesystem;

namespace {

// A child that waits to be killed; killed and reaped at the end of the scope at the latest.
struct PausedChild {
  pid_t id = ::fork();
  PausedChild() {
    if (id == 0) ::pause(), ::_exit(0);
  }
  ~PausedChild() { reap(); }
  void reap() {
    if (id > 0) ::kill(id, SIGKILL), ::waitpid(id, nullptr, 0);
    id = -1;
  }
};

}  // namespace

TEST(ScratchSystem, RootNames) {
  TempDirectory const temporary;
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  EXPECT_EQ(Internal::executableStem(), "test_files_internal");
  EXPECT_EQ(Internal::makeScratchRoot("app", "sub").generic(), VxString(temporary / "app/sub"));
  for (char const *name : {"", ".", "..", "../.."}) {
    EXPECT_EQ(Internal::makeScratchRoot(name, "").generic(), VxString(temporary / "Scratch")) << name;
  }
  std::ofstream(temporary / "file") << "x";
  EXPECT_THAT(
      [] { Internal::makeScratchRoot("file", ""); },
      throws("Couldn't create directories for \"" + Path(temporary / "file").string().toStdString() + "\"."));
}

TEST(ScratchSystem, FailedStartIsRetried) {
  TempDirectory const temporary;
  Internal::ScratchSystem system;
  {
    ScopedEnvironment const redirect("TMPDIR", (temporary / "missing").c_str());
    EXPECT_THAT([&] { system.makeUniqueDirectory("x"); },
                testing::ThrowsMessage<fs::filesystem_error>(
                    testing::HasSubstr("temp_directory_path(): can't find temp directory")));
  }
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  // Threads race for the start; each gets its own directory in the one process directory.
  std::vector<Path> made(4);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < made.size(); ++i) {
    threads.emplace_back([&, i] { made[i] = system.makeUniqueDirectory(VxString("t" + std::to_string(i))); });
  }
  for (std::thread &thread : threads)
    thread.join();
  std::string const process = temporary / ("test_files_internal/" + std::to_string(::getpid()));
  for (std::size_t i = 0; i < made.size(); ++i) {
    EXPECT_EQ(made[i].generic(), VxString(process + "/t" + std::to_string(i)));
  }
}

// Only wholly numeric names of processes that are gone, negative, or this one's are removed.
TEST(ScratchSystem, ReclaimingSparesLiveProcesses) {
  TempDirectory const root;
  Path const rootPath(root.path().string());
  PausedChild child;
  ASSERT_GT(child.id, 0);
  std::string const childName = std::to_string(child.id);
  for (std::string const &name : {childName, std::to_string(::getpid()), std::string("-5"), std::string("0"),
                                  std::string("abc"), std::string("123abc"), std::string("99999999999")}) {
    fs::create_directory(root / name);
  }
  std::ofstream(root / "-5/inside") << "x";

  Internal::reclaimStaleDirectories(rootPath);
  EXPECT_TRUE(fs::exists(root / childName));
  EXPECT_FALSE(fs::exists(root / std::to_string(::getpid())));
  EXPECT_FALSE(fs::exists(root / "-5"));
  for (char const *kept : {"0", "abc", "123abc", "99999999999"})
    EXPECT_TRUE(fs::exists(root / kept)) << kept;

  // Killed but not yet reaped counts as dead, and so does a reaped one.
  ::kill(child.id, SIGKILL);
  for (int i = 0; i < 1000 && Internal::isLiveProcess(child.id); ++i)
    ::usleep(1000);
  Internal::reclaimStaleDirectories(rootPath);
  EXPECT_FALSE(fs::exists(root / childName));
  child.reap();
  fs::create_directory(root / childName);
  Internal::reclaimStaleDirectories(rootPath);
  EXPECT_FALSE(fs::exists(root / childName));
}

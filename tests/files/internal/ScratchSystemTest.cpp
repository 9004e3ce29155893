#include <files/ScratchSystem.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/Throws.h>

#include "../TempDirectory.h"

#include <fstream>
#include <set>
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
  std::string const user = "-" + std::to_string(::geteuid());
  EXPECT_EQ(Internal::executableStem(), "test_files_internal");
  EXPECT_EQ(Internal::makeScratchRoot("app", "sub").generic(), VxString(temporary / ("app" + user + "/sub")));
  EXPECT_EQ(Internal::makeScratchRoot("a/b", "").generic(), VxString(temporary / ("a" + user + "/b")));
  for (char const *name : {"", ".", "..", "../.."}) {
    EXPECT_EQ(Internal::makeScratchRoot(name, "").generic(), VxString(temporary / ("Scratch" + user))) << name;
  }
  EXPECT_EQ(fs::status(temporary / ("app" + user)).permissions(), fs::perms::owner_all);
  EXPECT_EQ(fs::status(temporary / ("app" + user + "/sub")).permissions(), fs::perms::owner_all);
  std::string const tooLong(300, 'n');
  EXPECT_THAT([&] { Internal::makeScratchRoot(tooLong, ""); },
              throws("Couldn't create directories for \"" +
                     Path(temporary / (tooLong + user)).string().toStdString() + "\"."));
}

// Every level that exists already must be a plain directory of this user that no other user can reach.
TEST(ScratchSystem, RefusesLevelsOthersCouldReach) {
  TempDirectory const temporary;
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  std::string const user = "-" + std::to_string(::geteuid());
  auto const refused = [&](std::string const &level, std::string const &reason) {
    return throws("Refusing scratch directory \"" + Path(temporary / level).string().toStdString() +
                  "\": " + reason + ".");
  };
  std::ofstream(temporary / ("file" + user)) << "x";
  EXPECT_THAT([] { Internal::makeScratchRoot("file", ""); }, refused("file" + user, "it is not a directory"));
  fs::create_directory(temporary / "target");
  fs::create_directory_symlink(temporary / "target", temporary / ("link" + user));
  EXPECT_THAT([] { Internal::makeScratchRoot("link", ""); }, refused("link" + user, "it is a symbolic link"));
  fs::create_directory(temporary / ("open" + user));
  fs::permissions(temporary / ("open" + user), fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec);
  EXPECT_THAT([] { Internal::makeScratchRoot("open", ""); },
              refused("open" + user, "other users have access to it (mode 0750, not 0700)"));
  Internal::makeScratchRoot("app", "");
  fs::create_directory_symlink(temporary / "target", temporary / ("app" + user + "/sub"));
  EXPECT_THAT([] { Internal::makeScratchRoot("app", "sub"); },
              refused("app" + user + "/sub", "it is a symbolic link"));
  EXPECT_TRUE(fs::is_empty(temporary / "target"));
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
  std::string const process =
      temporary / ("test_files_internal-" + std::to_string(::geteuid()) + "/" + std::to_string(::getpid()));
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

// Names are taken by mkdir, so threads racing for one name still get a directory each.
TEST(ScratchSystemThreads, SameNameGivesEachThreadItsOwn) {
  TempDirectory const temporary;
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  Internal::ScratchSystem system;
  std::vector<std::vector<VxString>> made(4);
  std::vector<std::thread> threads;
  for (std::vector<VxString> &mine : made) {
    threads.emplace_back([&] {
      for (int i = 0; i < 20; ++i)
        mine.push_back(system.makeUniqueDirectory("x").generic());
    });
  }
  for (std::thread &thread : threads)
    thread.join();
  std::set<VxString> distinct;
  for (std::vector<VxString> const &mine : made)
    distinct.insert(mine.begin(), mine.end());
  EXPECT_EQ(distinct.size(), 80u);
}

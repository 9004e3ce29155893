#include <files/ScratchSystem.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../TempDirectory.h"

#include <fstream>
#include <thread>
#include <vector>

using namespace Tarvex::VantraCore;
using Experimental::Path;
namespace fs = std::filesystem;

namespace {

VxString below(TempDirectory const &directory, std::string const &name) {
  return VxString(directory / name);
}

// A child that waits to be killed; killed and reaped at the end of the scope at the latest.
class PausedChild {
 public:
  PausedChild() : m_id(::fork()) {
    if (m_id == 0) {
      ::pause();
      ::_exit(0);
    }
  }
  PausedChild(PausedChild const &) = delete;
  PausedChild &operator=(PausedChild const &) = delete;
  ~PausedChild() {
    if (m_id > 0) reap();
  }

  pid_t id() const { return m_id; }
  void kill() const { ::kill(m_id, SIGKILL); }
  void reap() {
    kill();
    ::waitpid(m_id, nullptr, 0);
    m_id = -1;
  }

 private:
  pid_t m_id;
};

}  // namespace

TEST(ScratchSystem, RootNames) {
  TempDirectory const temporary;
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  EXPECT_EQ(Internal::executableStem(), "test_files_internal");
  EXPECT_EQ(Internal::makeScratchRoot("app", "sub").generic(), below(temporary, "app/sub"));
  for (char const *name : {"", ".", "..", "../.."}) {
    EXPECT_EQ(Internal::makeScratchRoot(name, "").generic(), below(temporary, "Scratch")) << name;
  }
  Internal::ScratchSystem system;
  std::string const process = "test_files_internal/" + std::to_string(::getpid());
  EXPECT_EQ(system.makeUniqueDirectory("x").generic(), below(temporary, process + "/x"));
}

TEST(ScratchSystem, FailedStartIsRetried) {
  TempDirectory const temporary;
  std::ofstream(temporary / "file") << "x";
  Internal::ScratchSystem system;
  {
    ScopedEnvironment const redirect("TMPDIR", (temporary / "missing").c_str());
    try {
      system.makeUniqueDirectory("x");
      ADD_FAILURE() << "no error";
    } catch (fs::filesystem_error const &error) {
      EXPECT_THAT(error.what(), testing::HasSubstr("temp_directory_path(): can't find temp directory"));
    }
  }
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  fs::rename(temporary / "file", temporary / "test_files_internal");
  try {
    system.makeUniqueDirectory("x");
    ADD_FAILURE() << "no error";
  } catch (std::runtime_error const &error) {
    EXPECT_EQ(error.what(), "Couldn't create directories for \"" +
                                Path(temporary / "test_files_internal").string().toStdString() + "\".");
  }
  fs::remove(temporary / "test_files_internal");
  EXPECT_TRUE(system.makeUniqueDirectory("x").is_directory());
}

// Only wholly numeric names of processes that are gone, negative, or this one's are removed.
TEST(ScratchSystem, ReclaimingSparesLiveProcesses) {
  TempDirectory const root;
  Path const rootPath(root.path().string());
  PausedChild child;
  ASSERT_GT(child.id(), 0);
  std::string const childName = std::to_string(child.id());
  for (std::string const &name : {childName, std::string("-5"), std::to_string(::getpid()), std::string("0"),
                                  std::string("abc"), std::string("123abc"), std::string("99999999999")}) {
    fs::create_directory(root / name);
  }
  std::ofstream(root / "-5/inside") << "x";

  Internal::reclaimStaleDirectories(rootPath);
  EXPECT_TRUE(fs::exists(root / childName));
  EXPECT_TRUE(Internal::isLiveProcess(child.id()));
  for (char const *gone : {"-5"})
    EXPECT_FALSE(fs::exists(root / gone));
  EXPECT_FALSE(fs::exists(root / std::to_string(::getpid())));
  for (char const *kept : {"0", "abc", "123abc", "99999999999"})
    EXPECT_TRUE(fs::exists(root / kept)) << kept;

  // Killed but not yet reaped counts as dead, and so does a reaped one.
  child.kill();
  for (int i = 0; i < 1000 && Internal::isLiveProcess(child.id()); ++i)
    ::usleep(1000);
  Internal::reclaimStaleDirectories(rootPath);
  EXPECT_FALSE(fs::exists(root / childName));
  child.reap();
  fs::create_directory(root / childName);
  Internal::reclaimStaleDirectories(rootPath);
  EXPECT_FALSE(fs::exists(root / childName));
}

TEST(ScratchSystem, ThreadsStartItOnce) {
  TempDirectory const temporary;
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  Internal::ScratchSystem system;
  std::vector<std::thread> threads;
  std::vector<Path> made(4);
  for (std::size_t i = 0; i < made.size(); ++i) {
    threads.emplace_back([&, i] { made[i] = system.makeUniqueDirectory(VxString(std::to_string(i))); });
  }
  for (std::thread &thread : threads)
    thread.join();
  for (std::size_t i = 0; i < made.size(); ++i) {
    EXPECT_EQ(made[i].parent_path().string(), made[0].parent_path().string());
    EXPECT_TRUE(made[i].is_directory());
  }
}

#include <VantraCore/ScratchDirectory.h>
#include <files/ScratchSystem.h>

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/Throws.h>

#include "../TempDirectory.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <set>
#include <vector>

using namespace Tarvex::VantraCore;
using Experimental::Path;
namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

// Kills and reaps `id` only if it is a child of this process not yet reaped. As root, a stray 0 or -1
// would take the process group or every process on the machine with it.
void killChild(pid_t id) {
  if (id <= 0) std::abort();
  int status = 0;
  if (::waitpid(id, &status, WNOHANG) != 0) return;  // reaped now, or no child of ours
  ::kill(id, SIGKILL);
  ::waitpid(id, &status, 0);
}

struct Pipe {
  int ends[2] = {-1, -1};
  Pipe() {
    if (::pipe(ends) != 0) throw std::runtime_error("pipe failed");
  }
  ~Pipe() { closeRead(), closeWrite(); }
  void closeRead() { ends[0] >= 0 && ::close(ends[0]), ends[0] = -1; }
  void closeWrite() { ends[1] >= 0 && ::close(ends[1]), ends[1] = -1; }
};

// Reads to the end of `fd`, for ten seconds at most.
std::string readAll(int fd) {
  std::string text;
  auto const deadline = Clock::now() + std::chrono::seconds(10);
  for (char buffer[512];;) {
    pollfd ready{fd, POLLIN, 0};
    auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0 || ::poll(&ready, 1, static_cast<int>(left)) <= 0) return text + "<timed out>";
    ssize_t const got = ::read(fd, buffer, sizeof buffer);
    if (got <= 0) return text;
    text.append(buffer, static_cast<std::size_t>(got));
  }
}

// Forked children that start their work together at go(), report one text each, and stay alive until
// release(); whatever is left is killed at the end of the scope. A child dies with the test process.
class Children {
 public:
  ~Children() {
    for (pid_t id : m_ids)
      if (id > 0) killChild(id);
    for (int report : m_reports)
      ::close(report);
  }

  void spawn(std::function<std::string()> const &work) {
    Pipe report;
    pid_t const id = ::fork();
    if (id < 0) throw std::runtime_error("fork failed");
    if (id == 0) {
      // Never returns into the test program.
      try {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        m_go.closeWrite(), m_hold.closeWrite(), report.closeRead();
        readAll(m_go.ends[0]);
        std::string const text = work();
        if (::write(report.ends[1], text.data(), text.size()) < 0) ::_exit(2);
        report.closeWrite();
        readAll(m_hold.ends[0]);
      } catch (...) {
        ::_exit(3);
      }
      ::_exit(0);
    }
    m_ids.push_back(id);
    m_reports.push_back(::dup(report.ends[0]));
  }

  void go() { m_go.closeWrite(); }
  std::string report(std::size_t i) { return readAll(m_reports[i]); }
  pid_t id(std::size_t i) const { return m_ids[i]; }
  void kill(std::size_t i) { killChild(m_ids[i]), m_ids[i] = 0; }
  void release() {
    m_hold.closeWrite();
    for (pid_t &id : m_ids)
      if (id > 0) ::waitpid(id, nullptr, 0), id = 0;
  }

 private:
  Pipe m_go, m_hold;
  std::vector<pid_t> m_ids;
  std::vector<int> m_reports;
};

std::string userRoot(TempDirectory const &temporary, uid_t user) {
  return temporary / ("test_files_internal-" + std::to_string(user));
}

std::set<std::string> entries(std::string const &directory) {
  std::set<std::string> names;
  for (fs::directory_entry const &entry : fs::directory_iterator(directory))
    names.insert(entry.path().filename().string());
  return names;
}

// A new directory of `system` with a file in it.
std::string makeWithFile(Internal::ScratchSystem &system, VxString const &name) {
  std::string const made = system.makeUniqueDirectory(name).generic().toStdString();
  std::ofstream(made + "/mine") << "x";
  return made;
}

}  // namespace

TEST(ScratchProcesses, EightStartingAtOnceEachGetTheirOwn) {
  TempDirectory const temporary;
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  Children children;
  for (int i = 0; i < 8; ++i)
    children.spawn([] {
      Internal::ScratchSystem system;
      std::string const first = makeWithFile(system, "x");
      return first + " " + makeWithFile(system, "x");
    });
  children.go();
  std::string const root = userRoot(temporary, ::geteuid());
  for (std::size_t i = 0; i < 8; ++i) {
    std::string const process = root + "/" + std::to_string(children.id(i));
    EXPECT_EQ(children.report(i), process + "/x " + process + "/x1");
    EXPECT_TRUE(fs::exists(process + "/x/mine") && fs::exists(process + "/x1/mine")) << process;
  }
  EXPECT_EQ(fs::status(root).permissions(), fs::perms::owner_all);
}

// Killed before the root exists, holding the lock, while reclaiming or while making directories: the
// next start reclaims all of it, without waiting for a lock that a dead process held.
TEST(ScratchProcesses, KilledAnywhereLeavesNothingUnreclaimable) {
  TempDirectory const temporary;
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  std::string const root = userRoot(temporary, ::geteuid());
  for (int round = 0; round < 16; ++round) {
    if (round % 4 == 1 && fs::is_directory(root)) {
      fs::create_directories(root + "/-1/a/b");
      for (int i = 0; i < 200; ++i)
        std::ofstream(root + "/-1/a/b/" + std::to_string(i)) << "x";
    }
    Children children;
    children.spawn([] {
      Internal::ScratchSystem system;
      for (auto const end = Clock::now() + std::chrono::seconds(5); Clock::now() < end;)
        makeWithFile(system, "x");
      return std::string();
    });
    children.go();
    ::usleep(static_cast<useconds_t>(round * 300));
    children.kill(0);
  }
  auto const started = Clock::now();
  Internal::ScratchSystem system;
  std::string const mine = makeWithFile(system, "x");
  EXPECT_LT(Clock::now() - started, std::chrono::seconds(1));
  EXPECT_THAT(entries(root), testing::ElementsAre(".lock", std::to_string(::getpid())));
  EXPECT_EQ(mine, root + "/" + std::to_string(::getpid()) + "/x");
}

// Each round's pair starts at once, reclaiming the last round's and many dead trees while keeping the
// other's live directory.
TEST(ScratchProcesses, ConcurrentReclaimsKeepEachOthersDirectories) {
  TempDirectory const temporary;
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  std::string const root = Internal::makeScratchRoot("test_files_internal", "").generic().toStdString();
  std::vector<std::string> earlier;
  for (int round = 0; round < 4; ++round) {
    for (int i = 1; i <= 50; ++i)
      fs::create_directories(root + "/-" + std::to_string(i) + "/inner");
    Children children;
    for (int i = 0; i < 2; ++i) {
      children.spawn([] {
        Internal::ScratchSystem system;
        return makeWithFile(system, "x");
      });
    }
    children.go();
    std::vector<std::string> const made{children.report(0), children.report(1)};
    for (std::string const &directory : made)
      EXPECT_TRUE(fs::exists(directory + "/mine")) << directory;
    for (std::string const &directory : earlier)
      EXPECT_FALSE(fs::exists(directory)) << directory;
    std::set<std::string> const left = entries(root);
    EXPECT_EQ(left.size(), 3u);
    EXPECT_EQ(left.count(".lock"), 1u);
    children.release();
    earlier = made;
  }
}

// A second user on the same temporary directory, with the same application name.
TEST(ScratchProcesses, AnotherUserCanNeitherReadRemoveHijackNorBlock) {
  passwd const *const nobody = ::getpwnam("nobody");
  if (::geteuid() != 0 || !nobody || nobody->pw_uid == 0)
    GTEST_SKIP() << "needs to run as root, with a user nobody to switch to";
  passwd const other = *nobody;
  TempDirectory const temporary;
  fs::permissions(temporary.path(), fs::perms::all | fs::perms::sticky_bit);
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  std::string const root = userRoot(temporary, 0);
  Internal::ScratchSystem system;
  std::string const mine = makeWithFile(system, "x");
  std::string const process = root + "/" + std::to_string(::getpid());

  Children children;
  children.spawn([&] {
    if (::setgroups(0, nullptr) != 0 || ::setgid(other.pw_gid) != 0 || ::setuid(other.pw_uid) != 0)
      return std::string("could not switch user");
    std::string faults;
    auto const fault = [&](bool happened, char const *what) {
      if (happened) faults += std::string(what) + "; ";
    };
    DIR *const listing = ::opendir(root.c_str());
    fault(listing != nullptr, "listed the root");
    if (listing) ::closedir(listing);
    int const file = ::open((mine + "/mine").c_str(), O_RDONLY);
    fault(file >= 0, "read a file");
    if (file >= 0) ::close(file);
    fault(::unlink((mine + "/mine").c_str()) == 0, "removed a file");
    fault(::rename(process.c_str(), (temporary / "moved").c_str()) == 0, "moved a process directory");
    fault(::rename(root.c_str(), (temporary / "moved").c_str()) == 0, "moved the root");
    fault(::symlink("/", (process + "/x1").c_str()) == 0, "planted a link");
    // Its own scratch sits beside the first user's, and its reclaim, to which the first user's live
    // process looks dead, never looks there.
    Experimental::setScratchDirectoryAppName("test_files_internal", "");
    Internal::ScratchSystem own;
    std::string const made = makeWithFile(own, "x");
    fault(made != userRoot(temporary, other.pw_uid) + "/" + std::to_string(::getpid()) + "/x", "own scratch elsewhere");
    // Names the first user has not used yet can be taken, to be refused later, not followed.
    fault(::symlink(root.c_str(), (temporary / "hijack-0").c_str()) != 0, "could not plant a link");
    fault(::mkdir((temporary / "squat-0").c_str(), 0700) != 0, "could not squat");
    return faults;
  });
  children.go();
  EXPECT_EQ(children.report(0), "");
  pid_t const otherProcess = children.id(0);
  children.release();

  EXPECT_TRUE(fs::exists(mine + "/mine"));
  EXPECT_EQ(makeWithFile(system, "x"), process + "/x1");
  EXPECT_TRUE(fs::exists(userRoot(temporary, other.pw_uid) + "/" + std::to_string(otherProcess)));
  std::string const prefix = "Refusing scratch directory \"" + Path(temporary / "").string().toStdString();
  EXPECT_THAT([] { Internal::makeScratchRoot("hijack", ""); },
              throws(prefix + "hijack-0\": it is a symbolic link."));
  EXPECT_THAT([&] { Internal::makeScratchRoot("squat", ""); },
              throws(prefix + "squat-0\": it belongs to user " + std::to_string(other.pw_uid) + ", not to user 0."));
}

#include <VantraCore/ScratchDirectory.h>

#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/Throws.h>

#include "TempDirectory.h"

#include <fstream>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;

// The process's one scratch system, set up by the first call: this is the only test that calls it.
// Which entries its start reclaims, and its retry after a failed start, the internal tests pin.
TEST(ScratchDirectory, NumberedDirectoriesBelowTheProcessDirectory) {
  TempDirectory const temporary;
  ScopedEnvironment const redirect("TMPDIR", temporary.path().c_str());
  // The root carries the user id, and is this user's alone.
  std::string const root = temporary / ("analyzer-" + std::to_string(::geteuid()));
  std::filesystem::create_directories(root + "/-5");
  std::filesystem::permissions(root, std::filesystem::perms::owner_all);
  std::ofstream(root + "/-5/inside") << "x";
  setScratchDirectoryAppName("analyzer", "");

  std::string const process = root + "/" + std::to_string(::getpid());
  EXPECT_EQ(makeUniqueScratchDirectory("x").generic(), VxString(process + "/x"));
  EXPECT_FALSE(std::filesystem::exists(root + "/-5"));
  setScratchDirectoryAppName("other", "");
  EXPECT_EQ(makeUniqueScratchDirectory("x").generic(), VxString(process + "/x1"));
  EXPECT_EQ(makeUniqueScratchDirectory("x").generic(), VxString(process + "/x2"));
  std::filesystem::remove(process + "/x1");
  EXPECT_EQ(makeUniqueScratchDirectory("x").generic(), VxString(process + "/x1"));
  EXPECT_EQ(makeUniqueScratchDirectory("").generic(), VxString(process + "/1"));
  EXPECT_TRUE(std::filesystem::is_directory(process + "/x2"));
  EXPECT_FALSE(std::filesystem::exists(temporary / ("other-" + std::to_string(::geteuid()))));

  EXPECT_THAT(
      [&] { makeUniqueScratchDirectory("p/q"); },
      throws("Failed to create directory \"" + Path(process + "/p/q").string().toStdString() + "\"."));
  EXPECT_THROW(makeUniqueScratchDirectory("\xFF"), std::filesystem::filesystem_error);
}

#include <VantraCore/ScratchDirectory.h>

#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TempDirectory.h"

#include <fstream>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;

// The process's one scratch system, set up by the first call: this is the only test that calls it.
TEST(ScratchDirectory, NumberedDirectoriesBelowTheProcessDirectory) {
  TempDirectory const temporary;
  std::ofstream(temporary / "file") << "x";
  ScopedEnvironment redirect("TMPDIR", (temporary / "file").c_str());
  setScratchDirectoryAppName("analyzer", "");
  EXPECT_THROW(makeUniqueScratchDirectory("x"), std::filesystem::filesystem_error);

  ScopedEnvironment const retry("TMPDIR", temporary.path().c_str());
  for (char const *entry : {"-5", "0", "abc", "123abc"})
    std::filesystem::create_directories(temporary.path() / "analyzer" / entry);
  std::ofstream(temporary / "analyzer/-5/inside") << "x";

  std::string const process = temporary / ("analyzer/" + std::to_string(::getpid()));
  EXPECT_EQ(makeUniqueScratchDirectory("x").generic(), VxString(process + "/x"));
  setScratchDirectoryAppName("other", "");
  EXPECT_EQ(makeUniqueScratchDirectory("x").generic(), VxString(process + "/x1"));
  EXPECT_EQ(makeUniqueScratchDirectory("x").generic(), VxString(process + "/x2"));
  std::filesystem::remove(process + "/x1");
  EXPECT_EQ(makeUniqueScratchDirectory("x").generic(), VxString(process + "/x1"));
  EXPECT_EQ(makeUniqueScratchDirectory("").generic(), VxString(process + "/1"));
  EXPECT_TRUE(std::filesystem::is_directory(process + "/x2"));

  try {
    makeUniqueScratchDirectory("p/q");
    ADD_FAILURE() << "no error";
  } catch (std::runtime_error const &error) {
    std::string const expected =
        "Failed to create directory \"" + Path(process + "/p/q").string().toStdString() + "\".";
    EXPECT_EQ(error.what(), expected);
  }
  EXPECT_THROW(makeUniqueScratchDirectory("\xFF"), std::filesystem::filesystem_error);

  EXPECT_FALSE(std::filesystem::exists(temporary / "analyzer/-5"));
  for (char const *survivor : {"0", "abc", "123abc"})
    EXPECT_TRUE(std::filesystem::exists(temporary.path() / "analyzer" / survivor));
  EXPECT_FALSE(std::filesystem::exists(temporary / "other"));
}

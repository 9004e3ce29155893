#include <VantraCore/VantraCore.h>

#include <gtest/gtest.h>

#include <string>

using namespace Tarvex::VantraCore;

TEST(Version, HeaderProjectAndLoadedLibraryAgree) {
  std::string const fromNumbers = std::to_string(VANTRACORE_VERSION_MAJOR) + "." +
                                  std::to_string(VANTRACORE_VERSION_MINOR) + "." +
                                  std::to_string(VANTRACORE_VERSION_PATCH);
  EXPECT_EQ(fromNumbers, VANTRACORE_VERSION_STRING);
  EXPECT_EQ(std::string(VANTRACORE_VERSION_STRING), VANTRACORE_PROJECT_VERSION);
  EXPECT_EQ(std::string(libraryVersion()), VANTRACORE_VERSION_STRING);
}

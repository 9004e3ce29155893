#include <VantraCore/FileOperations.h>

#include <fcntl.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TempDirectory.h"

#include <cerrno>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;

class FileOperations : public testing::Test {
 protected:
  VxString at(std::string const &name) const { return VxString(m_directory / name); }

  TempDirectory m_directory;
};

TEST_F(FileOperations, Utf8NamesReachTheSystem) {
  VxString const directory = at("d\xC3\xA4");  // "dä"
  EXPECT_EQ(mkdirUtf8(directory), 0);
  EXPECT_EQ(mkdirUtf8(directory), 0);
  EXPECT_TRUE(std::filesystem::is_directory(m_directory.path() / "d\xC3\xA4"));
  EXPECT_EQ(mPathUtf8(directory + "\\x\\y"), 0);
  EXPECT_EQ(mkdirUtf8(at("missing/x")), -1);

  VxString const file = directory + "/f";
  int const fd = openUtf8(file, O_CREAT | O_WRONLY, 0600);
  ASSERT_GE(fd, 0);
  EXPECT_EQ(::write(fd, "abc", 3), 3);
  ::close(fd);
  EXPECT_EQ(fileSizeUtf8(file), 3u);
  EXPECT_EQ(fileSizeUtf8(at("missing")), 0u);
  EXPECT_EQ(accessUtf8(file, R_OK | W_OK), 0);
  EXPECT_EQ(chmodUtf8(file, 0400), 0);
  struct stat info {};
  ASSERT_EQ(statUtf8(file, &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0400u);
  EXPECT_EQ(info.st_size, 3);

  EXPECT_EQ(unlinkUtf8(directory), -1);
  EXPECT_EQ(rmdirUtf8(directory), -1);
  EXPECT_TRUE(std::filesystem::is_directory(m_directory.path() / "d\xC3\xA4"));
  EXPECT_EQ(renameUtf8(file, directory + "/g"), 0);
  EXPECT_EQ(renameUtf8(file, directory + "/g"), -1);
  EXPECT_EQ(removeUtf8(directory + "/g"), 0);
  EXPECT_EQ(rmdirUtf8(directory + "/x/y"), 0);
}

TEST_F(FileOperations, FreopenRedirectsAStream) {
  std::FILE *stream = std::tmpfile();
  ASSERT_NE(stream, nullptr);
  stream = freopenUtf8(at("out"), "w", stream);
  ASSERT_NE(stream, nullptr);
  std::fputs("hello", stream);
  std::fclose(stream);
  EXPECT_EQ(fileSizeUtf8(at("out")), 5u);
  EXPECT_EQ(freopenUtf8(at("out"), "r", nullptr), nullptr);
}

TEST_F(FileOperations, InvalidNamesFailWithoutThrowing) {
  VxString const bad = at("\xFF");
  errno = 0;
  EXPECT_EQ(accessUtf8(bad, F_OK), -1);
  EXPECT_EQ(errno, EILSEQ);
  EXPECT_EQ(openUtf8(bad, O_CREAT | O_WRONLY, 0600), -1);
  struct stat info {};
  EXPECT_EQ(statUtf8(bad, &info), -1);
  EXPECT_EQ(statUtf8(at(""), nullptr), -1);
  EXPECT_EQ(mkdirUtf8(bad), -1);
  EXPECT_EQ(renameUtf8(bad, at("x")), -1);
  EXPECT_EQ(fileSizeUtf8(bad), 0u);
  EXPECT_TRUE(std::filesystem::is_empty(m_directory.path()));
}

TEST_F(FileOperations, DirectorySaverGoesBack) {
  ScopedCurrentDirectory const restore;
  std::filesystem::path const original = std::filesystem::current_path();
  {
    DirectorySaver const saver;
    EXPECT_TRUE(saver.changeDir(Path(m_directory.path().string())));
    EXPECT_FALSE(saver.changeDir(Path(at("missing"))));
    EXPECT_EQ(std::filesystem::current_path(), m_directory.path());
    EXPECT_EQ(getCwdUtf8(), Path(m_directory.path().string()).string());
    EXPECT_EQ(saver.getOriginalCwd().generic(), VxString(original.string()));
  }
  EXPECT_EQ(std::filesystem::current_path(), original);
}

TEST_F(FileOperations, LostCurrentDirectoryThrows) {
  ScopedCurrentDirectory const restore;
  std::filesystem::create_directory(m_directory / "gone");
  std::filesystem::current_path(m_directory / "gone");
  std::filesystem::remove(m_directory / "gone");
  auto const message = [](auto &&operation) -> std::string {
    try {
      operation();
    } catch (std::filesystem::filesystem_error const &error) {
      return error.what();
    }
    return "no error";
  };
  EXPECT_THAT(message([] { getCwdUtf8(); }),
              testing::HasSubstr("current_path(): can't get current working directory"));
  EXPECT_THAT(message([] { DirectorySaver(); }),
              testing::HasSubstr("current_path(): can't get current working directory"));
  EXPECT_THAT(message([] { (void)Path("x").system_complete(); }),
              testing::HasSubstr("absolute(p1, p2): current_path() couldn't get current working directory"));
}

TEST(Environment, ReadAndWrite) {
  char const *const name = "VANTRACORE_FILES_TEST_VARIABLE";
  ScopedEnvironment const restore(name, nullptr);
  VxString value("untouched");
  EXPECT_FALSE(getEnvVxstringAllowEmpty(name, &value));
  EXPECT_EQ(getEnvVxstring(name), "");

  putEnvVxstring(name, "");
  EXPECT_FALSE(getEnvVxstringAllowEmpty(name, &value));
  EXPECT_EQ(value, "untouched");

  putEnvVxstring(name, "\xCF\x80=1");
  EXPECT_TRUE(getEnvVxstringAllowEmpty(name, &value));
  EXPECT_EQ(value, "\xCF\x80=1");
  VxString const longValue(std::string(5000, 'v'));
  putEnvVxstring(name, longValue);
  EXPECT_EQ(getEnvVxstring(name), longValue);

  EXPECT_THROW(putEnvVxstring("", "x"), std::bad_alloc);
  EXPECT_THROW(putEnvVxstring("A=B", "x"), std::bad_alloc);
}

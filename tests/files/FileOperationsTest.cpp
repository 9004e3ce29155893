#include <VantraCore/FileOperations.h>

#include <fcntl.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TempDirectory.h"

#include <cerrno>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;
using testing::HasSubstr;
using testing::ThrowsMessage;

class FileOperations : public testing::Test {
 protected:
  VxString at(std::string const &name) const { return VxString(m_directory / name); }

  TempDirectory m_directory;
};

TEST_F(FileOperations, Utf8NamesReachTheSystem) {
  VxString const directory = at("d\xC3\xA4");  // "dä"
  EXPECT_EQ(mkdirUtf8(directory), 0);
  EXPECT_EQ(mkdirUtf8(directory), 0);
  EXPECT_EQ(mPathUtf8(directory + "\\x\\y"), 0);

  VxString const file = directory + "/f";
  int const fd = openUtf8(file, O_CREAT | O_WRONLY, 0600);
  ASSERT_GE(fd, 0);
  EXPECT_EQ(::write(fd, "abc", 3), 3);
  ::close(fd);
  EXPECT_EQ(fileSizeUtf8(file), 3u);
  EXPECT_EQ(fileSizeUtf8(at("missing")), 0u);
  EXPECT_EQ(chmodUtf8(file, 0400), 0);
  EXPECT_EQ(accessUtf8(file, W_OK), ::getuid() == 0 ? 0 : -1);
  struct stat info {};
  ASSERT_EQ(statUtf8(file, &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0400u);

  EXPECT_EQ(unlinkUtf8(directory), -1);
  EXPECT_EQ(rmdirUtf8(directory), -1);
  EXPECT_TRUE(std::filesystem::is_directory(m_directory.path() / "d\xC3\xA4"));
  EXPECT_EQ(renameUtf8(file, directory + "/g"), 0);
  EXPECT_EQ(removeUtf8(directory + "/g"), 0);

  std::FILE *stream = freopenUtf8(at("out"), "w", std::tmpfile());
  ASSERT_NE(stream, nullptr);
  std::fputs("hello", stream);
  std::fclose(stream);
  EXPECT_EQ(fileSizeUtf8(at("out")), 5u);
}

TEST_F(FileOperations, BadArgumentsFailWithoutThrowing) {
  VxString const bad = at("\xFF");
  errno = 0;
  EXPECT_EQ(accessUtf8(bad, F_OK), -1);
  EXPECT_EQ(errno, EILSEQ);
  EXPECT_EQ(openUtf8(bad, O_CREAT | O_WRONLY, 0600), -1);
  EXPECT_EQ(mkdirUtf8(bad), -1);
  EXPECT_EQ(renameUtf8(bad, at("x")), -1);
  EXPECT_EQ(statUtf8(at(""), nullptr), -1);
  EXPECT_EQ(freopenUtf8(at("x"), "w", nullptr), nullptr);
  EXPECT_TRUE(std::filesystem::is_empty(m_directory.path()));
}

TEST_F(FileOperations, CurrentDirectory) {
  ScopedCurrentDirectory const restore;
  {
    DirectorySaver const saver;
    EXPECT_TRUE(saver.changeDir(Path(m_directory.path().string())));
    EXPECT_FALSE(saver.changeDir(Path(at("missing"))));
    EXPECT_EQ(getCwdUtf8(), Path(m_directory.path().string()).string());
    EXPECT_EQ(saver.getOriginalCwd().generic(), VxString(restore.saved.string()));
  }
  EXPECT_EQ(std::filesystem::current_path(), restore.saved);

  // A removed current directory cannot be read.
  std::filesystem::create_directory(m_directory / "gone");
  std::filesystem::current_path(m_directory / "gone");
  std::filesystem::remove(m_directory / "gone");
  using Error = std::filesystem::filesystem_error;
  EXPECT_THAT([] { getCwdUtf8(); },
              ThrowsMessage<Error>(HasSubstr("current_path(): can't get current working directory")));
  EXPECT_THAT([] { (void)Path("x").system_complete(); },
              ThrowsMessage<Error>(
                  HasSubstr("absolute(p1, p2): current_path() couldn't get current working directory")));
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

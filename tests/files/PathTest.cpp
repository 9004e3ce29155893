#include <VantraCore/Path.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TempDirectory.h"

#include <fstream>

using namespace Tarvex::VantraCore;
using Experimental::Path;
using testing::HasSubstr;

namespace {

std::string text(Path const &path) {
  return path.string().toStdString();
}

// Root name, root directory, relative path and whether absolute, joined by "|".
std::string roots(Path const &p) {
  return text(p.root_name()) + "|" + text(p.root_directory()) + "|" + text(p.relative_path()) +
         (p.is_absolute() ? "|absolute" : "");
}

std::string elementParts(Path const &p) {
  return text(p.parent_path()) + "|" + text(p.filename()) + "|" + text(p.stem()) + "|" + text(p.extension());
}

// Throws a filesystem error whose text holds `text`.
auto fsError(char const *text) {
  return testing::ThrowsMessage<std::filesystem::filesystem_error>(HasSubstr(text));
}

}  // namespace

TEST(Path, TextInAndOut) {
  Path const path("a/b\\c");
  EXPECT_EQ(path.string(), "a\\b\\c");
  EXPECT_EQ(path.generic(), "a/b/c");
  EXPECT_EQ(path.generic_u16string(), u"a/b/c");
  EXPECT_EQ(Path("\xC3\xA4/\xCF\x80").wstring(), L"\u00E4\\\u03C0");
  EXPECT_EQ(text(Path(std::string("a\0b", 3))), "a");
  EXPECT_EQ(Path::from_fs_path(std::filesystem::path("a/b")).string(), "a/b");
  EXPECT_EQ(Experimental::fixFilenameSlashes("a\\b\\c"), "a/b/c");
  VxString const clean("a/b");
  EXPECT_EQ(Experimental::fixFilenameSlashes(clean).c_str(), clean.c_str());

  for (char const *bad : {"\xFF", "a\xC3", "\xED\xA0\x80", "\xC0\xAF"}) {
    EXPECT_THAT([&] { (void)Path(bad); }, fsError("invalid char filename argument")) << bad;
  }
  // Names from the system stay bytes: they compare and fail to convert without a crash.
  Path const raw = Path::from_fs_path(std::filesystem::path("\xFF"));
  EXPECT_EQ(Path::compare_filenames(raw, raw), 0);
  EXPECT_NE(Path::compare_filenames(raw, "\xC3\xBF"), 0);
  EXPECT_THAT([&] { (void)raw.wstring(); }, fsError("invalid char filename argument"));
}

TEST(Path, LexicalParts) {
  EXPECT_EQ(roots("C:\\a\\b"), "C:|\\|a\\b|absolute");
  EXPECT_EQ(roots("//server/share/x"), "\\\\server|\\|share\\x|absolute");
  EXPECT_EQ(roots("\\\\\\a"), "|\\|\\\\a|absolute");
  EXPECT_EQ(roots("/tmp/x"), "|\\|tmp\\x|absolute");
  EXPECT_EQ(roots("C:a"), "C:||a");
  EXPECT_EQ(roots("a\\b:c"), "a\\b:||c");
  EXPECT_EQ(roots("\\\\server"), "\\\\server||");

  EXPECT_EQ(elementParts("C:\\a"), "C:\\|a|a|");
  EXPECT_EQ(elementParts("C:\\a\\."), "C:\\a|||");
  EXPECT_EQ(elementParts("C:\\"), "C:\\|||");
  EXPECT_EQ(elementParts("a/b.tar.gz"), "a|b.tar.gz|b.tar|.gz");
  EXPECT_EQ(elementParts("a\\.profile"), "a|.profile||.profile");
  EXPECT_EQ(elementParts("a\\b\\"), "a|b|b|");
  EXPECT_EQ(elementParts("a\\.."), "a|||");
}

TEST(Path, JoiningNeverReplaces) {
  EXPECT_EQ(text(Path("C:\\a") /= "\\b"), "C:\\a\\b");
  EXPECT_EQ(text(Path("C:\\a") /= "D:\\x"), "C:\\a\\D:\\x");
  EXPECT_EQ(text(Path("C:") /= "a"), "C:a");
  EXPECT_EQ(text(Path("a/") /= "b/c"), "a\\b\\c");
  EXPECT_EQ(text(Path() /= "b"), "b");
  EXPECT_EQ(text(Path("a") += "b"), "ab");
  EXPECT_EQ(Path::add_separator(""), "\\");
  EXPECT_EQ(Path::add_separator("a/"), "a/");
  EXPECT_EQ(Path::add_separator("a"), "a\\");
}

TEST(Path, NormalizeAndRemove) {
  for (auto const &[in, out] : {std::pair{"a\\b\\", "a\\b"},
                                {"abc", "abc"},
                                {"a.", "a."},
                                {"a\\.", "a"},
                                {".", ""},
                                {"a\\..", ""},
                                {"..\\..\\a", "..\\..\\a"},
                                {"a\\..\\..", ".."},
                                {"C:\\..\\a", "C:\\..\\a"},
                                {"//server/share/../x", "\\\\server\\x"},
                                {"/tmp//x/./y/..", "\\tmp\\x"}}) {
    EXPECT_EQ(text(Path(in).normalize()), out) << in;
  }
  for (auto const &[in, out] : {std::pair{"a", "a"},
                                {"C:\\", "C:\\"},
                                {"C:\\a", "C:\\"},
                                {"a\\b\\c", "a\\b"},
                                {"a\\b\\", "a"},
                                {"\\a", "\\"},
                                {"C:a", "C:"}}) {
    EXPECT_EQ(text(Path(in).remove_filename()), out) << in;
  }
  EXPECT_EQ(text(Path("a\\b.txt").replace_extension("md")), "a\\b.md");
  EXPECT_EQ(text(Path("a\\b.txt").replace_extension(".md")), "a\\b.md");
  EXPECT_EQ(text(Path("a\\..").replace_extension("md")), "a\\.md");
  for (auto const &[in, out] :
       {std::pair{"a\\b.txt", "a\\b"}, {"a.tar.gz", "a.tar"}, {".profile", ""}, {"a.b\\c", "a.b\\c"}}) {
    EXPECT_EQ(text(Path(in).remove_extension()), out) << in;
  }
}

TEST(Path, ResolveAndRelative) {
  EXPECT_EQ(text(Path("C:\\a").resolve_path("D:x")), "D:x");
  EXPECT_EQ(text(Path("D:\\a").resolve_path("d:x")), "d:\\a\\x");
  EXPECT_EQ(text(Path("C:\\a").resolve_path("\\b")), "C:\\b");
  EXPECT_EQ(text(Path("C:\\a").resolve_path("E:\\y\\.")), "E:\\y");
  EXPECT_EQ(text(Path("/tmp/a").resolve_path("/etc")), "\\etc");
  EXPECT_EQ(text(Path("/tmp/a").append_path("../b")), "\\tmp\\b");

  bool made = false;
  EXPECT_EQ(text(Path::make_relative_path("C:\\a\\b\\c", "C:\\a\\d", &made, 10)), "..\\b\\c");
  EXPECT_TRUE(made);
  EXPECT_EQ(text(Path::make_relative_path("C:\\A\\b", "c:\\a", &made, 0)), "b");
  EXPECT_TRUE(made);
  for (auto const &[base, maxUp] :
       {std::pair{"C:\\a\\d", 0}, {"D:\\a", 10}, {"C:\\x", 10}, {"C:a", 10}, {"a", 10}}) {
    EXPECT_EQ(text(Path::make_relative_path("C:\\a\\.\\b\\c", base, &made, maxUp)), "C:\\a\\b\\c") << base;
    EXPECT_FALSE(made) << base;
  }
}

TEST(Path, FilenamesCompareCaseInsensitively) {
  EXPECT_EQ(Path::compare_filenames("ABC", "abc"), 0);
  EXPECT_EQ(Path::compare_filenames("a", "B"), -1);
  EXPECT_EQ(Path::compare_filenames("ab", "A"), 1);
  EXPECT_EQ(Path::compare_filenames("abz", "AB\xC3\xA4"), -1);
  EXPECT_NE(Path::compare_filenames(Path::from_fs_path(std::filesystem::path("a/b")), "a\\b"), 0);
  // Latin-1 and Extended-A, Greek with final sigma and accents, Cyrillic; no one-to-many mappings.
  EXPECT_TRUE(Path::equal_filenames("ab\xC3\xA4\xC3\xBF\xC5\x82", "AB\xC3\x84\xC5\xB8\xC5\x81"));
  EXPECT_TRUE(Path::equal_filenames("\xCF\x83\xCE\xAF\xCF\x83\xCF\x82", "\xCE\xA3\xCE\x8A\xCE\xA3\xCE\xA3"));
  EXPECT_TRUE(Path("\xD0\xBF\xD1\x80\xD1\x91").equal_filenames("\xD0\x9F\xD0\xA0\xD0\x81"));
  EXPECT_FALSE(Path::equal_filenames("\xC3\x9F", "SS"));

  EXPECT_TRUE(Path("C:\\abc").starts_with("c:\\AB"));
  EXPECT_TRUE(Path("C:\\ab\xCF\x80\xCF\x81").starts_with("c:\\AB\xCE\xA0"));
  EXPECT_FALSE(Path("ab").starts_with("abc"));
  EXPECT_TRUE(Path("/tmp/abc").is_contained_within_path("/TMP/ab"));
}

class PathFiles : public testing::Test {
 protected:
  Path at(std::string const &name) const { return Path(m_directory / name); }
  void write(std::string const &name, std::string const &content) const {
    std::ofstream(m_directory / name) << content;
  }

  TempDirectory m_directory;
};

TEST_F(PathFiles, CompletionUsesTheCurrentDirectory) {
  ScopedCurrentDirectory const restore;
  std::filesystem::current_path(m_directory.path());
  Path const current = Path::current_path();
  EXPECT_EQ(text(current), text(Path(m_directory.path().string())));
  EXPECT_EQ(text(Path("a/../b").complete_path()), text(Path(current) /= "b"));
  EXPECT_EQ(text(Path("/etc/x").system_complete()), "\\etc\\x");
  EXPECT_EQ(text(Path("Q:z").system_complete()), "Q:\\z");

  write("f", "data");
  Path same("f");
  EXPECT_TRUE(same.equivalent("./f"));
  EXPECT_THAT([&] { Path("missing").equivalent("lost"); }, fsError("equivalent(p1, p2): invalid arguments"));
  // A name through a missing directory opens once the ".." is folded away.
  std::FILE *stream = Path("missing/../f").fopen("r");
  ASSERT_NE(stream, nullptr);
  std::fclose(stream);
}

TEST_F(PathFiles, CreateQueryDeleteRename) {
  EXPECT_THAT([&] { at("a/b").create_directory(); }, fsError("create_directory(p): invalid argument"));
  EXPECT_TRUE(at("a/b/c").create_directories());
  EXPECT_TRUE(at("a/b").create_directory());
  write("a/f", "12345");
  EXPECT_EQ(at("a/f").file_size(), 5u);
  EXPECT_TRUE(at("a/f").is_regular_file() && at("a/f").is_writable());
  EXPECT_FALSE(at("a/f/x").exists());
  EXPECT_THAT([&] { at("missing").file_size(); }, fsError("file_size(p): invalid argument"));
  EXPECT_THAT([&] { at("a/f/g").create_directories(); }, fsError("create_directories(p): invalid argument"));

  EXPECT_FALSE(at("a/f").delete_directory());
  EXPECT_FALSE(at("a/b").delete_file());
  EXPECT_TRUE(at("a/f").exists() && at("a/b").exists());
  EXPECT_THAT([&] { at("a/b").delete_directory(); }, fsError("remove(p): invalid argument"));
  EXPECT_TRUE(at("a/f").delete_file());
  std::filesystem::create_symlink(m_directory / "gone", m_directory / "link");
  EXPECT_TRUE(at("link").delete_file_or_directory());
  EXPECT_FALSE(at("link").delete_file_or_directory());
  EXPECT_TRUE(at("a").remove_all());
  EXPECT_FALSE(at("a").removeAllFilesDirectoriesRecursively());
  // Renaming replaces another file.
  write("from", "new");
  write("to", "old!");
  EXPECT_TRUE(at("from").rename(at("to")));
  EXPECT_EQ(at("to").file_size(), 3u);
  EXPECT_TRUE(at("to").rename(at("./to")));
  EXPECT_TRUE(at("to").exists());
  EXPECT_THAT([&] { at("from").rename(at("to")); }, fsError("rename(p1, p2): invalid arguments"));
}

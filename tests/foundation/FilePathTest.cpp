// FilePath: taking paths apart, building them, the library's name rules, unique names, folders made
// for a file, existence and temporary names; FileTime and the FILETIME operators.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "orvanta/foundation/FilePath.h"
#include "orvanta/foundation/FileTime.h"
#include "orvanta/platform/FileSystem.h"
#include "tests/support/TempDir.h"

using Orvanta::CString;
using OrvantaTest::TempDir;

namespace {

CString u16(const std::string& utf8) {
    return CString::fromUtf8(utf8);
}
std::string u8(const CString& text) {
    return text.toUtf8();
}

// A file system whose path lookups all fail with one error, or all find a regular file (error 0).
class LookupFileSystem : public Orvanta::Platform::FileSystem {
public:
    explicit LookupFileSystem(int error) : mError(error) { install(this); }
    ~LookupFileSystem() override { install(nullptr); }
    using FileSystem::stat;
    int stat(const char* path, struct stat* info) override {
        ++mLookups;
        if (mError) {
            errno = mError;
            return -1;
        }
        *info = {};
        info->st_mode = S_IFREG | 0644;
        return 0;
    }
    long lookups() const { return mLookups; }

private:
    int mError;
    long mLookups = 0;
};

void touch(const std::string& path) {
    OrvantaTest::writeFileBytes(path, "x");
}

}  // namespace

TEST(FilePathParts, SplitsNameTitleFolderAndExtension) {
    EXPECT_EQ(FilePath::getFileName(u"/a/b.txt"), CString(u"b.txt"));
    EXPECT_EQ(FilePath::getFileTitle(u"/a/b.txt"), CString(u"b"));
    EXPECT_EQ(FilePath::getFileTitle(u"/a/b.tar.gz"), CString(u"b.tar"));
    EXPECT_EQ(FilePath::getFileName(u"/a/dir/"), CString());
    EXPECT_EQ(FilePath::getDrive(u"/a/b.txt"), CString());
    EXPECT_EQ(FilePath::getFileName(u"c:\\a\\b.txt"), CString(u"c:\\a\\b.txt")) << "only / separates";
}

TEST(FilePathParts, ExtensionIsAfterTheLastDotOfTheName) {
    EXPECT_EQ(FilePath::getExtension(u"a.tar.gz"), CString(u"gz"));
    EXPECT_EQ(FilePath::getExtension(u"a."), CString());
    EXPECT_EQ(FilePath::getExtension(u"a"), CString());
    EXPECT_EQ(FilePath::getExtension(u"/photos.2004/readme"), CString())
        << "a dot in a folder is no extension";
    EXPECT_EQ(FilePath::getExtension(u".jpg"), CString(u"jpg"));
    EXPECT_EQ(FilePath::getExtension(u"/x/IMG_0001.JPG"), CString(u"JPG"));
}

TEST(FilePathParts, FolderLosesItsLastCharacter) {
    EXPECT_EQ(FilePath::getFolder(u"/a/b.txt", true), CString(u"/a"));
    EXPECT_EQ(FilePath::getFolder(u"/a/b.txt", false), CString(u"/a"));
    EXPECT_EQ(FilePath::getFolder(u"b.txt", true), CString());
    EXPECT_EQ(FilePath::getFolder(u"/b.txt", true), CString());
    EXPECT_EQ(FilePath::getFolder(u"/a/b/", true), CString(u"/a/b"));
}

TEST(FilePathValid, IllegalCharactersOfNameAndExtensionBecomeUnderscores) {
    EXPECT_EQ(FilePath::validPath(u"/a/b?c.jpg", false, nullptr), CString(u"/a/b_c.jpg"));
    EXPECT_EQ(FilePath::validPath(u"/a/x<y>:z*\"|\\.j|g", false, nullptr), CString(u"/a/x_y__z____.j_g"));
    // The folder part is the file system's business and is left alone.
    EXPECT_EQ(FilePath::validPath(u"/we?ird:/x.jpg", false, nullptr), CString(u"/we?ird:/x.jpg"));
}

TEST(FilePathValid, GivenExtensionFillsAMissingOne) {
    EXPECT_EQ(FilePath::validPath(u"/a/photo.", false, u"jpg"), CString(u"/a/photo.jpg"));
    EXPECT_EQ(FilePath::validPath(u"/a/photo", false, u"jpg"), CString(u"/a/photo.jpg"));
    EXPECT_EQ(FilePath::validPath(u"/a/photo", false, u".jpg"), CString(u"/a/photo.jpg"));
    EXPECT_EQ(FilePath::validPath(u"/a/photo.png", false, u"jpg"), CString(u"/a/photo.png"));
    EXPECT_EQ(FilePath::validPath(u"/a/photo.", false, nullptr), CString(u"/a/photo."));
    EXPECT_EQ(FilePath::validPath(u"/a/photo", false, u"j?g"), CString(u"/a/photo.j_g"));
}

TEST(FilePathValid, PathsAreAtMost260Characters) {
    const std::u16string folder = u"/" + std::u16string(100, u'd') + u"/";
    const CString exactly260(folder + std::u16string(260 - folder.size() - 4, u'n') + u".jpg");
    ASSERT_EQ(exactly260.length(), 260u);
    EXPECT_EQ(FilePath::validPath(exactly260, false, nullptr), exactly260);
    const CString longer(folder + std::u16string(261 - folder.size() - 4, u'n') + u".jpg");
    ASSERT_EQ(longer.length(), 261u);
    EXPECT_TRUE(FilePath::validPath(longer, false, nullptr).isEmpty());
    // Fits until the extension is added.
    const CString noExtension(folder + std::u16string(258 - folder.size(), u'n'));
    EXPECT_TRUE(FilePath::validPath(noExtension, false, u"jpg").isEmpty());
    EXPECT_TRUE(FilePath::validPath(u"", false, u"jpg").isEmpty());
    // Characters, not UTF-8 bytes, are counted.
    const CString wide(u"/" + std::u16string(254, u'\u00fc') + u".jpg");
    EXPECT_EQ(FilePath::validPath(wide, false, nullptr), wide);
}

TEST(FilePathUnique, NumbersFromTwoAndSkipsTakenNames) {
    TempDir dir;
    const CString wanted = dir.wide("x.jpg");
    EXPECT_EQ(FilePath::validPath(wanted, true, nullptr), wanted);
    touch(dir.file("x.jpg"));
    EXPECT_EQ(FilePath::validPath(wanted, true, nullptr), dir.wide("x-2.jpg"));
    touch(dir.file("x-2.jpg"));
    EXPECT_EQ(FilePath::validPath(wanted, true, nullptr), dir.wide("x-3.jpg"));
    // "x-1" is never handed out, even when it is free.
    EXPECT_FALSE(std::filesystem::exists(dir.file("x-1.jpg")));
    touch(dir.file("x-3.jpg"));
    EXPECT_EQ(FilePath::makePath(u16(dir.path()), u"x", true, u"jpg"), dir.wide("x-4.jpg"));
}

TEST(FilePathUnique, AFolderOfThatNameDoesNotTakeIt) {
    TempDir dir;
    std::filesystem::create_directory(dir.file("album.jpg"));
    EXPECT_EQ(FilePath::validPath(dir.wide("album.jpg"), true, nullptr), dir.wide("album.jpg"));
}

TEST(FilePathUnique, GivesUpWhenTheNumberedNameGrowsTooLong) {
    const LookupFileSystem everythingExists(0);
    const CString base(u"/" + std::u16string(250, u'p'));
    EXPECT_TRUE(FilePath::validPath(base, true, nullptr).isEmpty());
    // p, p-2 ... p-99999: the name reaches 257 characters with p-100000.
    EXPECT_EQ(everythingExists.lookups(), 99999);
}

TEST(FilePathMake, JoinsFolderAndNameWithOneSeparator) {
    EXPECT_EQ(FilePath::makePath(u"/a", u"b.jpg", false), CString(u"/a/b.jpg"));
    EXPECT_EQ(FilePath::makePath(u"/a/", u"b.jpg", false), CString(u"/a/b.jpg"));
    EXPECT_EQ(FilePath::makePath(u"", u"b.jpg", false), CString(u"b.jpg"));
    EXPECT_EQ(FilePath::makePath(u"/a", u"b", false, u"tif"), CString(u"/a/b.tif"));
    EXPECT_EQ(FilePath::makePath(u"/a", u"b:c", false, u"tif"), CString(u"/a/b_c.tif"));
}

TEST(FilePathMake, FolderAndNameMustStayUnder261Characters) {
    const CString folder(u"/" + std::u16string(199, u'f'));
    EXPECT_FALSE(FilePath::makePath(folder, CString(std::u16string(59, u'n')), false).isEmpty());
    EXPECT_TRUE(FilePath::makePath(folder, CString(std::u16string(60, u'n')), false).isEmpty());
}

TEST(FilePathMake, SetNameKeepsFolderAndExtension) {
    EXPECT_EQ(FilePath::setName(u"/a/photo.jpg", u"holiday", false), CString(u"/a/holiday.jpg"));
    EXPECT_EQ(FilePath::setName(u"/a/photo.jpg", u"holiday.png", false), CString(u"/a/holiday.png"));
    EXPECT_EQ(FilePath::setName(u"/photo.jpg", u"holiday", false), CString(u"/holiday.jpg"));
    EXPECT_EQ(FilePath::setName(u"/a/README", u"notes", false), CString(u"/a/notes"));
    EXPECT_EQ(FilePath::setName(u"/a/photo.jpg", u"what?", false), CString(u"/a/what_.jpg"));
    TempDir dir;
    touch(dir.file("holiday.jpg"));
    EXPECT_EQ(FilePath::setName(dir.wide("photo.jpg"), u"holiday", true), dir.wide("holiday-2.jpg"));
}

TEST(FilePathExists, FilesYesFoldersOnlyWhenAllowed) {
    TempDir dir;
    touch(dir.file("f.txt"));
    EXPECT_TRUE(FilePath::exists(dir.wide("f.txt"), false));
    EXPECT_TRUE(FilePath::exists(dir.wide("f.txt"), true));
    EXPECT_FALSE(FilePath::exists(u16(dir.path()), false));
    EXPECT_TRUE(FilePath::exists(u16(dir.path()), true));
    EXPECT_FALSE(FilePath::exists(dir.wide("missing.txt"), true));
    EXPECT_FALSE(FilePath::exists(dir.wide("f.txt/below"), true)) << "a file is no folder";
    EXPECT_FALSE(FilePath::exists(u"", true));
}

TEST(FilePathExists, OnlyNotFoundNotReadyAndUnreachableMeanAbsent) {
    for (int error : {ENOENT, ENOTDIR, ENOMEDIUM, ENETUNREACH, EHOSTUNREACH}) {
        const LookupFileSystem fs(error);
        EXPECT_FALSE(FilePath::exists(u"/somewhere/x.jpg", false)) << "errno " << error;
    }
    for (int error : {EACCES, EIO, ELOOP, ENAMETOOLONG}) {
        const LookupFileSystem fs(error);
        EXPECT_TRUE(FilePath::exists(u"/somewhere/x.jpg", false)) << "errno " << error;
    }
}

TEST(FilePathCreateFolder, MakesTheFoldersOfAFilePathButNotTheFile) {
    TempDir dir;
    EXPECT_TRUE(FilePath::createFolder(dir.wide("a/b/c.jpg")));
    EXPECT_TRUE(std::filesystem::is_directory(dir.file("a")));
    EXPECT_TRUE(std::filesystem::is_directory(dir.file("a/b")));
    EXPECT_FALSE(std::filesystem::exists(dir.file("a/b/c.jpg")));
    EXPECT_TRUE(FilePath::createFolder(dir.wide("a/b/c.jpg"))) << "folders already there are fine";
}

TEST(FilePathCreateFolder, LastElementIsANameUnlessATrailingSeparatorFollows) {
    TempDir dir;
    EXPECT_TRUE(FilePath::createFolder(dir.wide("p/q")));
    EXPECT_TRUE(std::filesystem::is_directory(dir.file("p")));
    EXPECT_FALSE(std::filesystem::exists(dir.file("p/q")));
    EXPECT_TRUE(FilePath::createFolder(dir.wide("x/y/")));
    EXPECT_TRUE(std::filesystem::is_directory(dir.file("x/y")));
}

TEST(FilePathCreateFolder, RootsAndBareNamesNeedNothing) {
    EXPECT_TRUE(FilePath::createFolder(u"/"));
    EXPECT_TRUE(FilePath::createFolder(u""));
    EXPECT_TRUE(FilePath::createFolder(u"photo.jpg"));
    EXPECT_TRUE(FilePath::createFolder(u"/photo.jpg"));
}

TEST(FilePathCreateFolder, AFileInTheWayMakesItFail) {
    TempDir dir;
    touch(dir.file("blocker"));
    EXPECT_FALSE(FilePath::createFolder(dir.wide("blocker/sub/c.jpg")));
    EXPECT_TRUE(std::filesystem::is_regular_file(dir.file("blocker")));
}

TEST(FilePathTemp, NamesAreFreshAndNothingIsLeftOnDisk) {
    TempDir dir;
    const char* saved = std::getenv("TMPDIR");
    const std::string savedValue = saved ? saved : "";
    setenv("TMPDIR", dir.path().c_str(), 1);
    const CString first = FilePath::getTempFilePath(u"abc");
    const CString second = FilePath::getTempFilePath(u"abc");
    const CString plain = FilePath::getTempFilePath();
    if (saved)
        setenv("TMPDIR", savedValue.c_str(), 1);
    else
        unsetenv("TMPDIR");

    ASSERT_FALSE(first.isEmpty());
    EXPECT_NE(first, second);
    EXPECT_EQ(FilePath::getFolder(first, true), u16(dir.path()));
    EXPECT_EQ(u8(FilePath::getFileName(first)).rfind("abc", 0), 0u);
    EXPECT_EQ(u8(FilePath::getFileName(plain)).rfind("###", 0), 0u);
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
    // The name is usable for a new file.
    touch(u8(first));
    EXPECT_TRUE(FilePath::exists(first, false));
}

TEST(FilePathTemp, AnUnusableFolderGivesNoName) {
    const char* saved = std::getenv("TMPDIR");
    const std::string savedValue = saved ? saved : "";
    setenv("TMPDIR", "/nonexistent-orvanta-folder", 1);
    const CString name = FilePath::getTempFilePath(u"x");
    if (saved)
        setenv("TMPDIR", savedValue.c_str(), 1);
    else
        unsetenv("TMPDIR");
    EXPECT_TRUE(name.isEmpty());
}

TEST(FileTimeValue, NullByDefaultAndAfterSetNull) {
    FileTime t;
    EXPECT_TRUE(t.isNull());
    t = FileTime::fromInt64(1);
    EXPECT_FALSE(t.isNull());
    t.setNull();
    EXPECT_TRUE(t.isNull());
    // Only both halves zero is null.
    EXPECT_FALSE(FileTime(Orvanta::FILETIME{0, 1}).isNull());
}

TEST(FileTimeValue, SixtyFourBitViewJoinsTheHalves) {
    const FileTime t(Orvanta::FILETIME{0x89abcdef, 0x01234567});
    EXPECT_EQ(static_cast<long long>(t), 0x0123456789abcdefLL);
    EXPECT_EQ(FileTime::toInt64(t), 0x0123456789abcdefLL);
    const FileTime back = FileTime::fromInt64(0x0123456789abcdefLL);
    EXPECT_EQ(back.dwLowDateTime, 0x89abcdefu);
    EXPECT_EQ(back.dwHighDateTime, 0x01234567u);
    FileTime assigned;
    assigned = Orvanta::FILETIME{5, 6};
    EXPECT_EQ(assigned.dwLowDateTime, 5u);
    EXPECT_EQ(assigned.dwHighDateTime, 6u);
}

TEST(FileTimeOperators, CompareTheFullCountUnsigned) {
    using Orvanta::FILETIME;
    const FILETIME lowHalfLarge{0xffffffff, 1};
    const FILETIME highHalfLarger{0, 2};
    EXPECT_TRUE(lowHalfLarge < highHalfLarger);
    EXPECT_TRUE(highHalfLarger > lowHalfLarge);
    EXPECT_FALSE(lowHalfLarge > lowHalfLarge);
    EXPECT_TRUE(lowHalfLarge <= lowHalfLarge && lowHalfLarge >= lowHalfLarge);
    EXPECT_TRUE(lowHalfLarge != highHalfLarger);
    // The top bit makes a count larger, not negative.
    EXPECT_TRUE((FILETIME{0, 0x80000000}) > (FILETIME{0, 0x7fffffff}));
    EXPECT_TRUE(FileTime::fromInt64(10) < FileTime::fromInt64(11));
}

TEST(FileTimeOperators, AddAndSubtractCarryAcrossTheHalves) {
    using Orvanta::FILETIME;
    const FILETIME sum = FILETIME{0xffffffff, 0} + FILETIME{1, 0};
    EXPECT_EQ(sum.dwLowDateTime, 0u);
    EXPECT_EQ(sum.dwHighDateTime, 1u);
    const FILETIME difference = FILETIME{0, 1} - FILETIME{1, 0};
    EXPECT_EQ(difference.dwLowDateTime, 0xffffffffu);
    EXPECT_EQ(difference.dwHighDateTime, 0u);
    EXPECT_TRUE(FileTime(FILETIME{3, 0} - FILETIME{5, 0}) == FileTime::fromInt64(-2));
}

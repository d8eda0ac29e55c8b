// FilePath: taking paths apart, building them, the library's name rules, unique names, folders made
// for a file, existence and temporary names; the FILETIME operators.

#include "orvanta/foundation/FilePath.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "orvanta/foundation/FileTime.h"
#include "orvanta/platform/FileSystem.h"
#include "tests/foundation/TestEnvironment.h"
#include "tests/support/TempDir.h"

using Orvanta::CString;
using OrvantaTest::TempDir;

namespace {

// A file system whose path lookups fail with one error (or, with error 0, all find a regular file)
// until `until` lookups were made; after that nothing is found.
class LookupFileSystem : public Orvanta::Platform::FileSystem {
public:
    explicit LookupFileSystem(int error, long until = -1) : mError(error), mUntil(until) { install(this); }
    ~LookupFileSystem() override { install(nullptr); }
    using FileSystem::stat;
    int stat(const char*, struct stat* info) override { return lookup(info); }
    int linkStat(const char*, struct stat* info) override { return lookup(info); }
    long lookups() const { return mLookups; }

private:
    int lookup(struct stat* info) {
        const int error = mUntil >= 0 && mLookups++ >= mUntil ? ENOENT : mError;
        mLookups += mUntil < 0;
        errno = error;
        *info = {};
        info->st_mode = S_IFREG | 0644;
        return error ? -1 : 0;
    }

    int mError;
    long mUntil;
    long mLookups = 0;
};

void touch(const std::string& path) {
    OrvantaTest::writeFileBytes(path, "x");
}

}  // namespace

TEST(FilePathParts, SplitsNameTitleFolderAndExtension) {
    const struct {
        const char16_t *path, *name, *title, *folder, *extension;
    } cases[] = {
        {u"/a/b.txt", u"b.txt", u"b", u"/a", u"txt"},
        {u"/a/b.tar.gz", u"b.tar.gz", u"b.tar", u"/a", u"gz"},
        {u"/a/dir/", u"", u"", u"/a/dir", u""},
        {u"b.txt", u"b.txt", u"b", u"", u"txt"},
        {u"/b.txt", u"b.txt", u"b", u"", u"txt"},
        {u"a.", u"a.", u"a", u"", u""},
        {u"/photos.2004/readme", u"readme", u"readme", u"/photos.2004", u""},
        {u".jpg", u".jpg", u"", u"", u"jpg"},
        {u"c:\\a\\b.txt", u"c:\\a\\b.txt", u"c:\\a\\b", u"", u"txt"}  // only / separates
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FilePath::getFileName(c.path), CString(c.name)) << CString(c.path).toUtf8();
        EXPECT_EQ(FilePath::getFileTitle(c.path), CString(c.title)) << CString(c.path).toUtf8();
        EXPECT_EQ(FilePath::getFolder(c.path, true), CString(c.folder)) << CString(c.path).toUtf8();
        EXPECT_EQ(FilePath::getExtension(c.path), CString(c.extension)) << CString(c.path).toUtf8();
        EXPECT_EQ(FilePath::getDrive(c.path), CString());
    }
}

TEST(FilePathValid, ReplacesIllegalCharactersFillsTheExtensionAndBuildsNames) {
    const struct {
        CString made, expected;
    } cases[] = {{FilePath::validPath(u"/a/b?c.jpg", false, nullptr), u"/a/b_c.jpg"},
                 {FilePath::validPath(u"/a/x<y>:z*\"|\\.j|g", false, nullptr), u"/a/x_y__z____.j_g"},
                 {FilePath::validPath(u"/we?ird:/x.jpg", false, nullptr),
                  u"/we?ird:/x.jpg"},  // folders are left alone
                 {FilePath::validPath(u"/a/photo.", false, u"jpg"), u"/a/photo.jpg"},
                 {FilePath::validPath(u"/a/photo", false, u".jpg"), u"/a/photo.jpg"},
                 {FilePath::validPath(u"/a/photo.png", false, u"jpg"), u"/a/photo.png"},
                 {FilePath::validPath(u"/a/photo.", false, nullptr), u"/a/photo."},
                 {FilePath::validPath(u"/a/photo", false, u"j?g"), u"/a/photo.j_g"},
                 {FilePath::makePath(u"/a", u"b.jpg", false), u"/a/b.jpg"},
                 {FilePath::makePath(u"/a/", u"b.jpg", false), u"/a/b.jpg"},
                 {FilePath::makePath(u"", u"b.jpg", false), u"b.jpg"},
                 {FilePath::makePath(u"/a", u"b:c", false, u"tif"), u"/a/b_c.tif"},
                 {FilePath::setName(u"/a/photo.jpg", u"holiday", false), u"/a/holiday.jpg"},
                 {FilePath::setName(u"/a/photo.jpg", u"holiday.png", false), u"/a/holiday.png"},
                 {FilePath::setName(u"/photo.jpg", u"holiday", false), u"/holiday.jpg"},
                 {FilePath::setName(u"/a/README", u"notes", false), u"/a/notes"}};
    for (const auto& c : cases) EXPECT_EQ(c.made, c.expected);
}

TEST(FilePathValid, PathsAreAtMost260Characters) {
    const std::u16string folder = u"/" + std::u16string(100, u'd') + u"/";
    const CString exactly260(folder + std::u16string(260 - folder.size() - 4, u'n') + u".jpg");
    EXPECT_EQ(FilePath::validPath(exactly260, false, nullptr), exactly260);
    EXPECT_TRUE(FilePath::validPath(exactly260 + u"x", false, nullptr).isEmpty());
    // Fits until the extension is added.
    EXPECT_TRUE(
        FilePath::validPath(CString(folder + std::u16string(258 - folder.size(), u'n')), false, u"jpg")
            .isEmpty());
    EXPECT_TRUE(FilePath::validPath(u"", false, u"jpg").isEmpty());
    // Characters, not UTF-8 bytes, are counted.
    const CString wide(u"/" + std::u16string(254, u'\u00fc') + u".jpg");
    EXPECT_EQ(FilePath::validPath(wide, false, nullptr), wide);
    const CString folder199(u"/" + std::u16string(199, u'f'));
    EXPECT_FALSE(FilePath::makePath(folder199, CString(std::u16string(59, u'n')), false).isEmpty());
    EXPECT_TRUE(FilePath::makePath(folder199, CString(std::u16string(60, u'n')), false).isEmpty());
}

TEST(FilePathUnique, NumbersFromTwoAndSkipsTakenNamesDanglingLinksIncluded) {
    TempDir dir;
    const CString wanted = dir.wide("x.jpg");
    EXPECT_EQ(FilePath::validPath(wanted, true, nullptr), wanted);
    touch(dir.file("x.jpg"));
    EXPECT_EQ(FilePath::validPath(wanted, true, nullptr), dir.wide("x-2.jpg")) << "x-1 is never handed out";
    ASSERT_EQ(0, symlink("nowhere.jpg", dir.file("x-2.jpg").c_str()));
    EXPECT_EQ(FilePath::makePath(CString::fromUtf8(dir.path()), u"x", true, u"jpg"), dir.wide("x-3.jpg"));
    touch(dir.file("holiday.jpg"));
    EXPECT_EQ(FilePath::setName(dir.wide("photo.jpg"), u"holiday", true), dir.wide("holiday-2.jpg"));
    std::filesystem::create_directory(dir.file("album.jpg"));
    EXPECT_EQ(FilePath::validPath(dir.wide("album.jpg"), true, nullptr), dir.wide("album.jpg"))
        << "a folder does not take the name";
}

TEST(FilePathUnique, GivesUpWhenTheNumberedNameGrowsTooLong) {
    const LookupFileSystem everythingExists(0);
    EXPECT_TRUE(FilePath::validPath(CString(u"/" + std::u16string(250, u'p')), true, nullptr).isEmpty());
    // p, p-2 ... p-99999: the name reaches 257 characters with p-100000.
    EXPECT_EQ(everythingExists.lookups(), 99999);
}

TEST(FilePathUnique, GivesUpAtOnceOnAnyLookupErrorButNotFound) {
    for (int error : {EACCES, ENAMETOOLONG, EIO, ELOOP, ENOTDIR}) {
        // Were the error taken for a name in use, the thousandth name would come back.
        const LookupFileSystem failing(error, 1000);
        EXPECT_TRUE(FilePath::validPath(u"/somewhere/x.jpg", true, nullptr).isEmpty()) << "errno " << error;
        EXPECT_EQ(failing.lookups(), 1);
    }
}

TEST(FilePathExists, FilesYesFoldersOnlyWhenAllowedAndOnlyAbsenceErrorsMeanAbsent) {
    TempDir dir;
    touch(dir.file("f.txt"));
    const CString folder = CString::fromUtf8(dir.path());
    EXPECT_TRUE(FilePath::exists(dir.wide("f.txt"), false));
    EXPECT_FALSE(FilePath::exists(folder, false));
    EXPECT_TRUE(FilePath::exists(folder, true));
    EXPECT_FALSE(FilePath::exists(dir.wide("missing.txt"), true));
    EXPECT_FALSE(FilePath::exists(dir.wide("f.txt/below"), true)) << "a file is no folder";
    EXPECT_FALSE(FilePath::exists(u"", true));
    for (int error :
         {ENOENT, ENOTDIR, ENOMEDIUM, ENETUNREACH, EHOSTUNREACH, EACCES, EIO, ELOOP, ENAMETOOLONG}) {
        const LookupFileSystem fs(error);
        const bool absent = error == ENOENT || error == ENOTDIR || error == ENOMEDIUM ||
                            error == ENETUNREACH || error == EHOSTUNREACH;
        EXPECT_EQ(FilePath::exists(u"/somewhere/x.jpg", false), !absent) << "errno " << error;
    }
}

TEST(FilePathCreateFolder, MakesTheFoldersOfAFilePathButNotTheFile) {
    TempDir dir;
    EXPECT_TRUE(FilePath::createFolder(dir.wide("a/b/c.jpg")));
    EXPECT_TRUE(FilePath::createFolder(dir.wide("a/b/c.jpg"))) << "folders already there are fine";
    EXPECT_TRUE(std::filesystem::is_directory(dir.file("a/b")));
    EXPECT_FALSE(std::filesystem::exists(dir.file("a/b/c.jpg")));
    EXPECT_TRUE(FilePath::createFolder(dir.wide("x/y/")));
    EXPECT_TRUE(std::filesystem::is_directory(dir.file("x/y")));
    for (const char16_t* nothingToMake : {u"/", u"", u"photo.jpg", u"/photo.jpg"})
        EXPECT_TRUE(FilePath::createFolder(nothingToMake));
    touch(dir.file("blocker"));
    EXPECT_FALSE(FilePath::createFolder(dir.wide("blocker/sub/c.jpg")));
}

TEST(FilePathTemp, NamesAreFreshAndNothingIsLeftOnDisk) {
    TempDir dir;
    CString first, second, plain, none;
    {
        const OrvantaTest::ScopedVariable tmp("TMPDIR", dir.path().c_str());
        first = FilePath::getTempFilePath(u"abc");
        second = FilePath::getTempFilePath(u"abc");
        plain = FilePath::getTempFilePath();
    }
    {
        const OrvantaTest::ScopedVariable tmp("TMPDIR", "/nonexistent-orvanta-folder");
        none = FilePath::getTempFilePath(u"x");
    }
    ASSERT_FALSE(first.isEmpty());
    EXPECT_NE(first, second);
    EXPECT_EQ(FilePath::getFolder(first, true), CString::fromUtf8(dir.path()));
    EXPECT_EQ(FilePath::getFileName(first).toUtf8().rfind("abc", 0), 0u);
    EXPECT_EQ(FilePath::getFileName(plain).toUtf8().rfind("###", 0), 0u);
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
    EXPECT_TRUE(none.isEmpty());
}

TEST(FileTimeOperators, CompareAndAddTheFullCountUnsigned) {
    using Orvanta::FILETIME;
    const FILETIME lowHalfLarge{0xffffffff, 1}, highHalfLarger{0, 2};
    EXPECT_TRUE(lowHalfLarge < highHalfLarger && highHalfLarger > lowHalfLarge &&
                lowHalfLarge != highHalfLarger);
    EXPECT_TRUE(lowHalfLarge <= lowHalfLarge && lowHalfLarge >= lowHalfLarge &&
                !(lowHalfLarge > lowHalfLarge));
    EXPECT_TRUE((FILETIME{0, 0x80000000}) > (FILETIME{0, 0x7fffffff})) << "the top bit makes a count larger";
    EXPECT_TRUE((FILETIME{0xffffffff, 0} + FILETIME{1, 0}) == (FILETIME{0, 1}));
    EXPECT_TRUE((FILETIME{0, 1} - FILETIME{1, 0}) == (FILETIME{0xffffffff, 0}));
    EXPECT_EQ(FileTime::toInt64(FILETIME{3, 0} - FILETIME{5, 0}), -2);
    EXPECT_EQ(static_cast<long long>(FileTime(FILETIME{0x89abcdef, 0x01234567})), 0x0123456789abcdefLL);
    EXPECT_TRUE(FileTime().isNull());
    EXPECT_FALSE(FileTime(FILETIME{0, 1}).isNull()) << "only both halves zero is null";
}

// FilePath: taking paths apart, building them, the library's name rules, unique names, folders made
// for a file, and existence.

#include "orvanta/foundation/FilePath.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

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
    long lookups = 0;

private:
    int lookup(struct stat* info) {
        errno = mUntil >= 0 && lookups >= mUntil ? ENOENT : mError;
        ++lookups;
        *info = {};
        info->st_mode = S_IFREG | 0644;
        return errno ? -1 : 0;
    }
    int mError;
    long mUntil;
};

}  // namespace

TEST(FilePathParts, SplitsNameTitleFolderAndExtension) {
    const struct {
        const char16_t *path, *name, *title, *folder, *extension;
    } cases[] = {
        {u"/a/b.tar.gz", u"b.tar.gz", u"b.tar", u"/a", u"gz"},
        {u"/a/dir/", u"", u"", u"/a/dir", u""},
        {u"/b.txt", u"b.txt", u"b", u"", u"txt"},
        {u"a.", u"a.", u"a", u"", u""},
        {u"/photos.2004/readme", u"readme", u"readme", u"/photos.2004", u""},
        {u".jpg", u".jpg", u"", u"", u"jpg"},
        {u"c:\\a\\b.txt", u"c:\\a\\b.txt", u"c:\\a\\b", u"", u"txt"}  // only / separates
    };
    for (const auto& c : cases) {
        const std::string path = CString(c.path).toUtf8();
        EXPECT_EQ(FilePath::getFileName(c.path), CString(c.name)) << path;
        EXPECT_EQ(FilePath::getFileTitle(c.path), CString(c.title)) << path;
        EXPECT_EQ(FilePath::getFolder(c.path, true), CString(c.folder)) << path;
        EXPECT_EQ(FilePath::getExtension(c.path), CString(c.extension)) << path;
    }
}

TEST(FilePathValid, ReplacesIllegalCharactersFillsTheExtensionAndKeepsTo260Characters) {
    const std::u16string folder = u"/" + std::u16string(100, u'd') + u"/";
    const CString exactly260(folder + std::u16string(260 - folder.size() - 4, u'n') + u".jpg");
    const CString wide(u"/" + std::u16string(254, u'\u00fc') + u".jpg");  // characters, not bytes
    const CString folder199(u"/" + std::u16string(199, u'f'));
    const struct {
        CString made, expected;
    } cases[] = {
        {FilePath::validPath(u"/a/x<y>:z*\"|\\.j|g", false, nullptr), u"/a/x_y__z____.j_g"},
        {FilePath::validPath(u"/we?ird:/x.jpg", false, nullptr), u"/we?ird:/x.jpg"},  // folders kept
        {FilePath::validPath(u"/a/photo.", false, u"jpg"), u"/a/photo.jpg"},
        {FilePath::validPath(u"/a/photo.png", false, u"jpg"), u"/a/photo.png"},
        {FilePath::validPath(u"/a/photo", false, u"j?g"), u"/a/photo.j_g"},
        {FilePath::makePath(u"/a", u"b:c", false, u"tif"), u"/a/b_c.tif"},
        {FilePath::setName(u"/a/photo.jpg", u"holiday", false), u"/a/holiday.jpg"},
        {FilePath::setName(u"/a/photo.jpg", u"holiday.png", false), u"/a/holiday.png"},
        {FilePath::validPath(exactly260, false, nullptr), exactly260},
        {FilePath::validPath(exactly260 + u"x", false, nullptr), CString()},
        {FilePath::validPath(CString(folder + std::u16string(258 - folder.size(), u'n')), false, u"jpg"),
         CString()},  // fits until the extension is added
        {FilePath::validPath(wide, false, nullptr), wide},
        {FilePath::makePath(folder199, CString(std::u16string(59, u'n')), false),
         folder199 + u"/" + CString(std::u16string(59, u'n'))},
        {FilePath::makePath(folder199, CString(std::u16string(60, u'n')), false), CString()}};
    for (const auto& c : cases) EXPECT_EQ(c.made, c.expected);
}

TEST(FilePathOnDisk, UniqueNamesSkipTakenOnesAndFoldersAreMadeForAFile) {
    TempDir dir;
    const CString wanted = dir.wide("x.jpg");
    EXPECT_EQ(FilePath::validPath(wanted, true, nullptr), wanted);
    OrvantaTest::writeFileBytes(dir.file("x.jpg"), "x");
    EXPECT_EQ(FilePath::validPath(wanted, true, nullptr), dir.wide("x-2.jpg")) << "x-1 is never handed out";
    ASSERT_EQ(0, symlink("nowhere.jpg", dir.file("x-2.jpg").c_str()));
    EXPECT_EQ(FilePath::makePath(CString::fromUtf8(dir.path()), u"x", true, u"jpg"), dir.wide("x-3.jpg"));
    EXPECT_TRUE(FilePath::exists(wanted, false) && !FilePath::exists(wanted + u"/below", true));
    EXPECT_TRUE(FilePath::createFolder(dir.wide("a/b/c.jpg")) && FilePath::createFolder(dir.wide("a/b/")));
    EXPECT_TRUE(std::filesystem::is_directory(dir.file("a/b")) &&
                !std::filesystem::exists(dir.file("a/b/c.jpg")));
    EXPECT_FALSE(FilePath::createFolder(dir.wide("x.jpg/sub/c.jpg")));
    EXPECT_EQ(FilePath::validPath(dir.wide("a"), true, nullptr), dir.wide("a"))
        << "a folder does not take the name";
    EXPECT_TRUE(FilePath::exists(dir.wide("a"), true) && !FilePath::exists(dir.wide("a"), false));
}

TEST(FilePathOnDisk, LookupErrorsOtherThanAbsenceMeanNeitherAbsentNorFree) {
    for (int error : {ENOENT, ENOTDIR, ENOMEDIUM, ENETUNREACH, EHOSTUNREACH, EACCES, EIO, ELOOP}) {
        const LookupFileSystem fs(error);
        const bool absent = error != EACCES && error != EIO && error != ELOOP;
        EXPECT_EQ(FilePath::exists(u"/somewhere/x.jpg", false), !absent) << "errno " << error;
    }
    for (int error : {EACCES, ENAMETOOLONG, EIO, ELOOP}) {
        // Were the error taken for a name in use, the thousandth name would come back.
        const LookupFileSystem failing(error, 1000);
        EXPECT_TRUE(FilePath::validPath(u"/somewhere/x.jpg", true, nullptr).isEmpty()) << "errno " << error;
        EXPECT_EQ(failing.lookups, 1);
    }
    const LookupFileSystem everythingExists(0);
    EXPECT_TRUE(FilePath::validPath(CString(u"/" + std::u16string(250, u'p')), true, nullptr).isEmpty());
    EXPECT_EQ(everythingExists.lookups, 99999) << "p, p-2 ... p-99999; p-100000 is 257 characters";
}

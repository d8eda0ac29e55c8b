// Preferences: the answers for missing values and other kinds, getBinary's size protocol, the file's
// form (a file written by hand is read, and what it holds beside the values is kept), a damaged file,
// and the previous file kept whole through a full disk, a kill during a write and two writers at once.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <tuple>

#include "orvanta/desktop/Prefs.h"
#include "orvanta/desktop/RegistryPrefs.h"
#include "orvanta/platform/ResourceModule.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// The store of a key path, named by the host's string resource as a host names its key.
std::unique_ptr<RegistryPrefs> prefsOf(const char16_t* keyPath, int id = 4100) {
    Platform::ResourceModule::current()->addString(id, keyPath);
    return std::make_unique<RegistryPrefs>(id);
}

// Where a key path under "Software\Orvanta Tests" keeps its file.
std::string fileOf(const std::string& key) {
    return std::string(std::getenv("XDG_CONFIG_HOME")) + "/Orvanta Tests/" + key + "/preferences.conf";
}

void writeByHand(const std::string& key, const std::string& text) {
    std::filesystem::create_directories(std::filesystem::path(fileOf(key)).parent_path());
    writeFileBytes(fileOf(key), text);
}

}  // namespace

TEST(PrefsTest, EachKindReadsBackAnyOtherReadGivesTheMissingAnswerAndABufferTooSmallIsRefused) {
    Platform::ResourceModule::current()->addString(4200, u"Software\\Orvanta Tests\\Rules");
    Prefs::setRegistryKey(4200);
    Prefs prefs;
    const unsigned char bytes[] = {1, 2, 3};
    prefs.setString(u"Text", u"hello");
    prefs.setString(u"Cut", CString(u"ab\0cd", 5));
    prefs.setInt(u"Zero", 0);
    prefs.setBool(u"On", true);
    prefs.setInt(u"All", 0xFFFFFFFF);
    prefs.setDate(u"Before", -5);
    prefs.setInt(u"Wide", 0x100000002UL);
    prefs.setBinary(u"Bytes", bytes, 3);
    for (const auto& [name, isPref, number, flag, date, text] : {
             std::tuple{u"Missing", false, 0xFFFFFFFFUL, false, 0L, u""},
             {u"Text", true, 0xFFFFFFFFUL, false, 0L, u"hello"},  // a string is no number
             {u"TEXT", true, 0xFFFFFFFFUL, false, 0L, u"hello"},  // names compare without case
             {u"Cut", true, 0xFFFFFFFFUL, false, 0L, u"ab"},
             {u"Zero", true, 0UL, false, 0L, u""},
             {u"On", true, 1UL, true, 1L, u""},
             {u"All", true, 0xFFFFFFFFUL, false, 0L, u""},  // reads as missing
             {u"Before", true, 0xFFFFFFFBUL, true, -5L, u""},
             {u"Wide", true, 2UL, true, 2L, u""},  // 32 bits kept
             {u"Bytes", true, 0xFFFFFFFFUL, false, 0L, u""},
         }) {
        EXPECT_EQ(std::tuple(isPref, number, flag, date, CString(text).toUtf8()),
                  std::tuple(prefs.isPref(name), prefs.getInt(name), prefs.getBool(name), prefs.getDate(name),
                             prefs.getString(name).toUtf8()))
            << CString(name).toUtf8();
    }
    // getBinary's size protocol.
    for (const auto& [name, withBuffer, given, sizeAfter, answer] :
         {std::tuple{u"Bytes", false, 0UL, 3UL, true},
          {u"Bytes", true, 2UL, 2UL, false},
          {u"Bytes", true, 3UL, 3UL, true},
          {u"Bytes", true, 8UL, 3UL, true},
          {u"On", true, 8UL, 0UL, false},
          {u"Missing", false, 8UL, 0UL, false}}) {
        std::array<unsigned char, 8> buffer{};
        unsigned long size = given;
        const bool answered = prefs.getBinary(name, withBuffer ? buffer.data() : nullptr, size);
        EXPECT_EQ(std::tuple(answer, sizeAfter), std::tuple(answered, size))
            << CString(name).toUtf8() << given;
        EXPECT_TRUE(!withBuffer || !answer || std::memcmp(bytes, buffer.data(), 3) == 0);
    }
}

TEST(PrefsTest, AFileWrittenByHandIsReadAndWhatItHoldsBesideTheValuesIsKept) {
    writeByHand("Hand",
                "# kept\n[Other]\nx=1\n[Preferences]\n"
                "Title=sz:Caf\xc3\xa9 \\\\ one\\ntwo\n"
                "Count=dword:0000002A\n"
                "Blob=hex:00ff10\n"
                "Odd=42\n"
                "a%3Db%5B1%5D=dword:00000001\n");
    auto prefs = prefsOf(u"Software\\Orvanta Tests\\Hand");
    EXPECT_EQ(CString(u"Caf\u00e9 \\ one\ntwo"), prefs->getString(u"Title"));
    EXPECT_EQ(42u, prefs->getInt(u"count"));
    EXPECT_EQ(1u, prefs->getInt(u"a=b[1]"));
    unsigned char blob[3];
    unsigned long size = sizeof blob;
    EXPECT_TRUE(prefs->getBinary(u"Blob", blob, size));
    EXPECT_EQ(0, std::memcmp("\x00\xff\x10", blob, 3));
    // A value of no known form is there, and of no kind a reader asks for.
    EXPECT_TRUE(prefs->isPref(u"Odd"));
    EXPECT_EQ(0xFFFFFFFFu, prefs->getInt(u"Odd"));

    prefs->setInt(u"COUNT", 7);
    prefs->setString(u" #x=y", u"z");
    prefs->setString(u"Encoding", u"GLib reads that name itself");
    EXPECT_EQ(
        "# kept\n\n[Other]\nx=1\n\n[Preferences]\nTitle=sz:Caf\xc3\xa9 \\\\ one\\ntwo\nCount=dword:00000007\n"
        "Blob=hex:00ff10\nOdd=42\na%3Db%5B1%5D=dword:00000001\n%20#x%3Dy=sz:z\n"
        "%45ncoding=sz:GLib reads that name itself\n",
        readFileBytes(fileOf("Hand")));
    auto again = prefsOf(u"Software\\Orvanta Tests\\Hand", 4101);
    EXPECT_EQ(CString(u"z"), again->getString(u" #x=y"));
    EXPECT_EQ(CString(u"GLib reads that name itself"), again->getString(u"Encoding"));
}

TEST(PrefsTest, ADamagedFileReadsAsEmptyIsKeptAsideAndTheNextWriteStartsAnew) {
    for (const std::string damaged : {"[Preferences]\nCount=dword:00000001\nno key here\n",
                                      "Count=dword:00000001\n", "[Preferences]\n=no name\n"}) {
        writeByHand("Damaged", damaged);
        auto prefs = prefsOf(u"Software\\Orvanta Tests\\Damaged");
        EXPECT_FALSE(prefs->isPref(u"Count"));
        EXPECT_EQ(damaged, readFileBytes(fileOf("Damaged") + ".damaged"));
        prefs->setInt(u"New", 1);
        EXPECT_EQ("[Preferences]\nNew=dword:00000001\n", readFileBytes(fileOf("Damaged")));
    }
}

TEST(PrefsTest, AFullDiskOrAKillDuringAWriteLeavesThePreviousFileWhole) {
    auto prefs = prefsOf(u"Software\\Orvanta Tests\\Faults");
    prefs->setString(u"Name", u"before");
    const std::string before = readFileBytes(fileOf("Faults"));
    const CString longer = CString::fromUtf8(std::string(6000, 'x'));
    for (long long budget : {0LL, 40LL, 5000LL}) {
        FaultyFileSystem full;
        full.failWritesAfter(budget);
        prefs->setString(u"Name", longer);
    }
    EXPECT_EQ(before, readFileBytes(fileOf("Faults")));
    const auto folder = std::filesystem::path(fileOf("Faults")).parent_path();
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(folder), {})) << "a temporary file left";
    for (const auto& [written, rename] : {std::pair{0LL, 0}, {3000LL, 0}, {-1LL, 1}}) {
        EXPECT_EXIT(
            {
                FaultyFileSystem dying;
                dying.dieAfterWriting(written);
                dying.dieAtRename(rename);
                prefs->setString(u"Name", longer);
                _exit(0);
            },
            ::testing::ExitedWithCode(9), "");
        EXPECT_EQ(CString(u"before"), prefs->getString(u"Name"));
    }
    EXPECT_EQ(before, readFileBytes(fileOf("Faults")));
}

TEST(PrefsTest, TwoProcessesWritingAtOnceEachAddToWhatTheOtherLeftUntilKilled) {
    int acks[2];
    ASSERT_EQ(0, pipe(acks));
    std::array<pid_t, 2> writers{};
    for (int w = 0; w < 2; ++w) {
        writers[w] = fork();
        if (writers[w] != 0) continue;
        close(acks[0]);
        auto own = prefsOf(u"Software\\Orvanta Tests\\Writers");
        for (int i = 1; i < 100000; ++i) {
            own->setInt(w ? u"Second" : u"First", static_cast<unsigned long>(i));
            const int ack[2] = {w, i};
            if (write(acks[1], ack, sizeof ack) != sizeof ack) break;
        }
        _exit(0);
    }
    close(acks[1]);
    std::array<int, 2> acked{};
    for (int ack[2]; std::min(acked[0], acked[1]) < 25 && read(acks[0], ack, sizeof ack) == sizeof ack;)
        acked[ack[0]] = ack[1];
    for (pid_t writer : writers) kill(writer, SIGKILL), waitpid(writer, nullptr, 0);
    for (int ack[2]; read(acks[0], ack, sizeof ack) == sizeof ack;) acked[ack[0]] = ack[1];
    close(acks[0]);
    auto prefs = prefsOf(u"Software\\Orvanta Tests\\Writers");
    for (int w = 0; w < 2; ++w) {
        // The last write acknowledged, or the one under way when the kill came.
        const unsigned long found = prefs->getInt(w ? u"Second" : u"First");
        EXPECT_TRUE(found == static_cast<unsigned long>(acked[w]) ||
                    found == static_cast<unsigned long>(acked[w] + 1))
            << w << ": " << found << " after " << acked[w];
    }
}

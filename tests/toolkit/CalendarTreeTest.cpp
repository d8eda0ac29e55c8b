// The date picker and the folder tree: a month as each locale's own calendar has it (Gregorian,
// Buddhist, Persian), the picker driven by its own keys and by a click in its drop-down calendar (the
// keys that open and close the drop-down are the drop-down list's, tested in ListsTest), and the
// folder tree read a level at a time, in the language's order, opened and closed by keys and mouse.

#include <SDL.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/LocaleCalendar.h"
#include "orvanta/toolkit/DatePickerCtrl.h"
#include "orvanta/toolkit/FolderTree.h"
#include "tests/foundation/TestEnvironment.h"
#include "tests/support/TempDir.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

SYSTEMTIME date(int year, int month, int day) {
    SYSTEMTIME d{};
    d.wYear = static_cast<WORD>(year);
    d.wMonth = static_cast<WORD>(month);
    d.wDay = static_cast<WORD>(day);
    return d;
}

std::tuple<int, int, int> ymd(const SYSTEMTIME& d) {
    return {d.wYear, d.wMonth, d.wDay};
}

TEST(LocaleCalendarTest, AMonthIsTheLocalesOwnCalendarsMonth) {
    struct Case {
        const char* locale;
        std::u16string title;
        std::tuple<int, int, int> first;
        int days, firstColumn;
        std::u16string firstWeekday, firstNumber;
    };
    // 15 March 2026: Gregorian March (1 March a Sunday); Buddhist year 2026 + 543; in Iran the month
    // Esfand 1404, from 20 February (a Friday: Saturday starts the week there) to the new year on 21
    // March, 29 days in a common year, in Persian digits.
    const Case cases[] = {
        {"en_US", u"March 2026", {2026, 3, 1}, 31, 0, u"Su", u"1"},
        {"de_DE", u"März 2026", {2026, 3, 1}, 31, 6, u"Mo", u"1"},
        {"th_TH", u"มีนาคม 2569", {2026, 3, 1}, 31, 0, u"อา", u"1"},
        {"fa_IR", u"", {2026, 2, 20}, 29, 6, u"", u"۱"},
    };
    for (const Case& c : cases) {
        Platform::LocaleCalendar calendar(c.locale);
        const Platform::LocaleCalendar::Month month = calendar.month(date(2026, 3, 15));
        if (!c.title.empty()) {
            EXPECT_EQ(month.title.str(), c.title) << c.locale;
        }
        EXPECT_EQ(ymd(month.first), c.first) << c.locale;
        EXPECT_EQ(month.days, c.days) << c.locale;
        EXPECT_EQ(month.firstColumn, c.firstColumn) << c.locale;
        ASSERT_EQ(month.numbers.size(), static_cast<std::size_t>(c.days)) << c.locale;
        EXPECT_EQ(month.numbers[0].str(), c.firstNumber) << c.locale;
        ASSERT_EQ(calendar.weekdays().size(), 7u);
        EXPECT_EQ(calendar.weekdays()[0].str().substr(0, c.firstWeekday.size()), c.firstWeekday) << c.locale;
    }
    // Months on: the same day, or the last of a shorter month; days across a year's end.
    Platform::LocaleCalendar gregorian("en_US");
    EXPECT_EQ(ymd(gregorian.addMonths(date(2024, 1, 31), 1)), std::make_tuple(2024, 2, 29));
    EXPECT_EQ(ymd(gregorian.addMonths(date(2024, 3, 31), -13)), std::make_tuple(2023, 2, 28));
    EXPECT_EQ(ymd(Platform::LocaleCalendar::addDays(date(2025, 12, 31), 1)), std::make_tuple(2026, 1, 1));
    EXPECT_EQ(Platform::LocaleCalendar::daysBetween(date(2024, 2, 1), date(2024, 3, 1)), 29);
}

TEST(DatePickerTest, KeysAndTheDropDownCalendarChangeTheDate) {
    CommandLog log;
    UiHarness ui(CSize(360, 320));
    DatePickerCtrl* picker = DatePickerCtrl::create(8, &log);
    picker->setRect(CRect(20, 20, 200, 46));
    picker->setDate(date(2024, 1, 31));
    ui.root()->add(picker, true);
    picker->setFocus();
    ui.runUntilIdle();
    struct Step {
        std::function<void()> act;
        bool open;
        std::tuple<int, int, int> date;
        std::size_t commands;
    };
    const Step steps[] = {
        {[&] { ui.pressKey(SDLK_DOWN); }, false, {2024, 2, 1}, 1},
        {[&] { ui.pressKey(SDLK_UP), ui.pressKey(SDLK_PAGEDOWN); }, false, {2024, 2, 29}, 3},  // no 31st
        {[&] { ui.pressKey(SDLK_DOWN, false, false, true); }, true, {2024, 2, 29}, 3},
        {[&] { ui.pressKey(SDLK_RIGHT), ui.pressKey(SDLK_DOWN), ui.pressKey(SDLK_PAGEUP); },
         true,
         {2024, 2, 29},
         3},
        {[&] { ui.pressKey(SDLK_RETURN); }, false, {2024, 2, 8}, 4},  // 29 Feb + 1 + 7 days, a month back
        {[&] { ui.click(CPoint(100, 30)); }, true, {2024, 2, 8}, 4},
        {[&] {
             ui.setInputWindow(picker->getPopup()->getHWND());
             const CRect day = picker->getCalendar()->getDayRect(23);
             ui.click(ui.pointIn(picker->getCalendar(), &day));
         },
         false,
         {2024, 2, 23},
         5},
        {[&] { picker->setDate(date(2030, 6, 1)); }, false, {2030, 6, 1}, 5},
    };
    for (const Step& s : steps) {
        s.act();
        ui.runUntilIdle();
        EXPECT_EQ(picker->isOpen(), s.open);
        EXPECT_EQ(ymd(picker->getDate()), s.date);
        EXPECT_EQ(log.commands.size(), s.commands);
    }
}

// Roots of the test's own, and a file system that counts the folders listed and refuses one.
struct TestRoots : FolderTreeRoots {
    explicit TestRoots(std::string top) : top(std::move(top)) {}
    std::vector<Root> getRoots() const override {
        return {{u"Photos", CString::fromUtf8(top)}, {u"None", u"/no/such"}};
    }
    std::string top;
};

struct CountingFileSystem : Platform::FileSystem {
    CountingFileSystem() { install(this); }
    ~CountingFileSystem() override { install(nullptr); }
    int readDirectory(const char* path, std::vector<DirectoryEntry>* entries) override {
        listed.push_back(path);
        if (refused == path) return -1;
        return FileSystem::readDirectory(path, entries);
    }
    std::vector<std::string> listed;
    std::string refused;
};

TEST(FolderTreeTest, LevelsAreReadWhenOpenedAndWalkedByKeysAndMouse) {
    TempDir dir;
    for (const char* folder : {"Zebra/deep/deeper", "Ärger/x", "alpha", ".hidden/y", "locked"})
        std::filesystem::create_directories(dir.file(folder));
    std::ofstream(dir.file("photo.jpg")) << "not a folder";
    std::filesystem::create_directory_symlink(dir.file("alpha"), dir.file("link"));
    CountingFileSystem files;
    files.refused = dir.file("locked");
    CommandLog log;
    UiHarness ui(CSize(300, 300));
    FolderTree* tree =
        place(ui.root(), FolderTree::create(5, new TestRoots(dir.path()), &log), CRect(0, 0, 300, 300), true);
    tree->setFocus();
    ui.runUntilIdle();
    EXPECT_TRUE(files.listed.empty());  // nothing is read before it is opened

    auto titles = [&] {
        std::vector<std::u16string> out;
        for (int i = 0; i < tree->getRowCount(); ++i)
            out.push_back(std::u16string(2 * tree->getDepth(i), u' ') + tree->getTitle(i).str());
        return out;
    };
    const auto rowPoint = [&](int row, bool onExpander) {
        const CRect r = onExpander ? tree->getExpanderRect(row) : tree->getRowRect(row);
        return CPoint(onExpander ? (r.left + r.right) / 2 : r.left + 100, (r.top + r.bottom) / 2);
    };
    struct Step {
        std::function<void()> act;
        std::vector<std::u16string> rows;
        std::u16string selected;
        std::size_t commands;
    };
    const Step steps[] = {
        {[&] { ui.pressKey(SDLK_DOWN), ui.pressKey(SDLK_RIGHT); },
         {u"Photos", u"  alpha", u"  Ärger", u"  link", u"  locked", u"  Zebra"},
         u"Photos",
         1},
        {[&] { ui.pressKey(SDLK_RIGHT), ui.pressKey(SDLK_RIGHT); },  // into alpha, which is empty
         {u"Photos", u"  alpha", u"  Ärger", u"  link", u"  locked", u"  Zebra"},
         u"alpha",
         2},
        {[&] { ui.pressKey(SDLK_END), ui.typeText("+"), ui.pressKey(SDLK_RIGHT), ui.pressKey(SDLK_RIGHT); },
         {u"Photos", u"  alpha", u"  Ärger", u"  link", u"  locked", u"  Zebra", u"    deep",
          u"      deeper"},
         u"deep",
         4},
        {[&] { ui.click(rowPoint(5, true)); },  // Zebra's expander closes it, leaving the selection inside
         {u"Photos", u"  alpha", u"  Ärger", u"  link", u"  locked", u"  Zebra"},
         u"Zebra",
         5},
        {[&] { ui.pressKey(SDLK_LEFT), ui.pressKey(SDLK_LEFT); }, {u"Photos"}, u"Photos", 6},
        {[&] {
             ui.mouseDown(rowPoint(0, false), 1, 2);
             ui.mouseUp(rowPoint(0, false));
         },
         {u"Photos", u"  alpha", u"  Ärger", u"  link", u"  locked", u"  Zebra"},
         u"Photos",
         7},
    };
    for (const Step& s : steps) {
        s.act();
        ui.runUntilIdle();
        EXPECT_EQ(titles(), s.rows);
        EXPECT_EQ(tree->getTitle(tree->getSelection()).str(), s.selected);
        EXPECT_EQ(log.commands.size(), s.commands);
    }
    EXPECT_EQ(log.commands.back().second, CommandListener::kItemActivated);
    // Read once each, only what was opened; a folder found empty, or unreadable, has no expander.
    const std::vector<std::string> listed = {dir.path(), dir.file("alpha"), dir.file("Zebra"),
                                             dir.file("Zebra/deep")};
    EXPECT_EQ(files.listed, listed);
    EXPECT_FALSE(tree->mayHaveChildren(1));
    EXPECT_TRUE(tree->expand(5));
    tree->expand(4);
    EXPECT_FALSE(tree->mayHaveChildren(4));
    // The way down to a folder opens for it.
    ASSERT_TRUE(tree->selectPath(CString::fromUtf8(dir.file("Ärger/x/"))));
    EXPECT_EQ(tree->getSelectedPath().toUtf8(), dir.file("Ärger/x"));
    EXPECT_FALSE(tree->selectPath(CString::fromUtf8(dir.file("Ärger/missing"))));
}

// The default roots: the special folders first (those that exist), then home and the root.
TEST(FolderTreeTest, TheSpecialFoldersComeFirst) {
    TempDir dir;
    std::filesystem::create_directories(dir.file("home/Bilder"));
    std::filesystem::create_directories(dir.file("config"));
    std::ofstream(dir.file("config/user-dirs.dirs")) << "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n";
    const ScopedVariable home("HOME", dir.file("home").c_str());
    const ScopedVariable config("XDG_CONFIG_HOME", dir.file("config").c_str());
    UiHarness ui(CSize(200, 200));
    OwnedPtr<FolderTree> tree = FolderTree::create(1);
    std::vector<std::u16string> titles;
    for (int i = 0; i < tree->getRowCount(); ++i) titles.push_back(tree->getTitle(i).str());
    EXPECT_EQ(titles, (std::vector<std::u16string>{u"Bilder", u"home", u"/"}));  // no Documents folder
    EXPECT_EQ(tree->getPath(0).toUtf8(), dir.file("home/Bilder"));
}

}  // namespace

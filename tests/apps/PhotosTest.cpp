// Orvanta Photos' parts on real photographs: the import, the library's views, saving edits (compared
// with `orvanta edit` doing the same in place), the originals kept, and the failures a user meets,
// told in a message while the program goes on (the real program, driven by its input script).

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "VideoStock.h"
#include "apps/photos/FolderImport.h"
#include "apps/photos/GridScreen.h"
#include "apps/photos/OriginalsPolicy.h"
#include "apps/photos/PhotoLibrary.h"
#include "apps/photos/PictureSession.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/GenericVideoCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/desktop/SingleInstance.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/MouseTracker.h"
#include "orvanta/toolkit/Tooltip.h"
#include "tests/support/CupsServer.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/ToolRunner.h"
#include "tests/support/UiHarness.h"

using namespace Orvanta;
using namespace OrvantaPhotos;
using namespace OrvantaTest;

namespace {

const char* const kPortrait = "redeye/redeye-boldredeye-nikon-d40-300x226.jpg";
const char* const kCamera = "jpeg/canon-powershot-a85-orient8.jpg";

void copyTestFile(const char* name, const std::string& to) {
    std::filesystem::create_directories(std::filesystem::path(to).parent_path());
    writeFileBytes(to, readFileBytes(testDataPath(name)));
}

class PhotosTest : public ::testing::Test {
protected:
    void SetUp() override {
        ORVANTA_REQUIRE_TESTDATA();
        orvantaIUInit();
    }
    void pump() {
        MSG msg;
        while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE))
            if (!processMessage(&msg, nullptr)) Platform::dispatchMessage(&msg);
    }
    TempDir dir;
};

// A video is catalogued too, and its cell in the grid shows the stock film frame.
TEST_F(PhotosTest, AFolderIsImportedOnceWithItsThumbnailsMadeAndItsViewsSortAndFilter) {
    OrvantaTool::registerVideoCodec();
    copyTestFile(kPortrait, dir.file("photos/b-Portrait.jpg"));
    copyTestFile(kCamera, dir.file("photos/nested/a-camera.jpg"));
    writeFileBytes(dir.file("photos/c-damaged.jpg"), "not a picture at all");
    writeFileBytes(dir.file("photos/notes.txt"), "text");
    writeFileBytes(dir.file("photos/d-clip.mp4"), std::string(4096, '\x42'));
    // Files written one after another may share a millisecond, and so a date: each is given its own,
    // a day apart, in the order camera, video, portrait.
    int day = 0;
    for (const char* name : {"photos/nested/a-camera.jpg", "photos/d-clip.mp4", "photos/b-Portrait.jpg"})
        std::filesystem::last_write_time(dir.file(name), std::filesystem::file_time_type::clock::now() -
                                                             std::chrono::hours(24 * (3 - day++)));
    PhotoLibrary library;
    ASSERT_TRUE(library.open(dir.file("catalogue.db"))) << library.lastError();
    for (int round = 0; round < 2; ++round) {
        int done = -1, total = -1, added = -1, skipped = -1;
        FolderImport import(library.catalogue(), library.thumbnails(),
                            {[this] { pump(); }, [&](int d, int t) { done = d, total = t; },
                             [&](int a, int s) { added = a, skipped = s; }});
        ASSERT_TRUE(import.run(CString::fromUtf8(dir.file("photos"))));
        for (int i = 0; i < 2000 && import.isRunning(); ++i) {
            pump();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        // The second time nothing is new, and every thumbnail is already good.
        EXPECT_EQ(round == 0 ? 3 : 0, added);
        EXPECT_EQ(1, skipped);  // the damaged file, each time
        EXPECT_EQ(done, total);
    }
    ASSERT_EQ(3, library.catalogue()->getCount());
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(library.thumbnails()->isValid(OwnedPtr<Asset>(library.catalogue()->getAsset(i))));

    const auto names = [&](SortedAssetList* view) {
        std::string all;
        for (int i = 0; i < view->getCount(); ++i)
            all += OwnedPtr<Asset>(view->getAsset(i))
                       ->getProperties()
                       ->getValue(Asset::kPropFilename)
                       .asString()
                       .toUtf8() +
                   " ";
        return all;
    };
    EXPECT_EQ("a-camera.jpg b-Portrait.jpg d-clip.mp4 ",
              names(library.makeView(PhotoLibrary::kByName, CString())));
    EXPECT_EQ("b-Portrait.jpg ", names(library.makeView(PhotoLibrary::kByName, u"portrait")));
    EXPECT_EQ("a-camera.jpg d-clip.mp4 b-Portrait.jpg ",
              names(library.makeView(PhotoLibrary::kOldestFirst, CString())));
    EXPECT_EQ("b-Portrait.jpg d-clip.mp4 a-camera.jpg ",
              names(library.makeView(PhotoLibrary::kNewestFirst, CString())));

    // The grid of the video alone: its cell holds the film frame (stored as a JPEG, so nearly).
    UiHarness ui(CSize(640, 480));
    GridScreen screen(library.thumbnails(), nullptr);
    screen.root()->setRect(CRect(0, 0, 640, 480));
    ui.root()->add(screen.root());
    screen.grid()->setList(library.makeView(PhotoLibrary::kByName, u"clip"));
    ui.runUntilIdle();
    Dib* stock =
        static_cast<GenericVideoCodec*>(CodecManager::getCodec(u"mp4"))->getThumbnailImage()->getDib();
    const CSize size = stock->getSize();
    const CRect cell = screen.grid()->thumbnailRect(ThumbnailCell(0, 0));
    ASSERT_EQ(size, cell.size());
    const CPoint origin = screen.grid()->getHWND()->clientToScreen(cell.topLeft());
    const CPoint inWindow = ui.window()->screenToClient(origin);
    long long error = 0;
    for (int y = 0; y < size.cy; ++y)
        for (int x = 0; x < size.cx; ++x) {
            const int grey = stock->getBits()[std::size_t(y) * ((size.cx * 3 + 3) & ~3) + 3 * x];
            const COLORREF shown = ui.pixel(inWindow.x + x, inWindow.y + y);
            for (int c = 0; c < 3; ++c) error += std::abs(static_cast<int>((shown >> (8 * c)) & 0xFF) - grey);
        }
    EXPECT_LT(error / (3 * size.cx * size.cy), 4) << "mean difference per channel";
    // Resting on the caption shows the whole name.
    const CRect whole = screen.grid()->cellRect(ThumbnailCell(0, 0), true);
    ui.mouseMove(ui.window()->screenToClient(
        screen.grid()->getHWND()->clientToScreen(CPoint(whole.left + 20, whole.bottom - 8))));
    ui.runFor(Platform::MouseTracker::kDefaultHoverTime + 200);
    ASSERT_NE(screen.grid()->getTooltipWindow(), nullptr);
    EXPECT_EQ(u"d-clip.mp4", screen.grid()->getTooltipWindow()->getText().str());
}

TEST_F(PhotosTest, SavedEditsEqualTheHostsInPlaceEditsAndTheFirstOriginalIsKept) {
    if (!toolAvailable()) GTEST_SKIP() << "the orvanta host is not named ($ORVANTA_TOOL)";
    OriginalsPolicy originals(dir.file("originals"));
    originals.makePolicyCurrent();
    struct Case {
        std::vector<int> edits;  // angles; 0 a mirror
        std::string host;
    };
    const Case cases[] = {{{90}, "rotate=90"},
                          {{90, 90, 90}, "rotate=90 rotate=90 rotate=90"},
                          {{0}, "mirror=h"},
                          {{90, 0}, "rotate=90 mirror=h"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.host);
        const std::string mine = dir.file("mine.jpg"), twin = dir.file("twin.jpg");
        copyTestFile(kCamera, mine);
        copyTestFile(kCamera, twin);
        std::filesystem::remove_all(dir.file("originals"));
        OwnedPtr<Asset> asset = Asset::create(UniqueID::create(), CString::fromUtf8(mine), nullptr, nullptr);
        PictureSession session;
        std::string message;
        ASSERT_TRUE(session.open(asset, CSize(800, 600), &message)) << message;
        ASSERT_TRUE(session.makeEditable(&message)) << message;
        for (int edit : c.edits)
            ASSERT_TRUE(session.apply(edit ? static_cast<EditingOp*>(RotateOp::create(edit))
                                           : MirrorOp::create(false)));
        ASSERT_TRUE(session.save(&message)) << message;
        session.close();
        ASSERT_EQ(0, runTool("edit '" + twin + "' '" + twin + "' " + c.host).status);
        EXPECT_EQ(readFileBytes(twin), readFileBytes(mine));
        // A re-encoding save keeps the original first (turns may be made in the file instead).
        const bool kept = std::filesystem::exists(originals.originalOf(mine));
        EXPECT_TRUE(kept || c.host.find("mirror") == std::string::npos);
        if (kept) {
            EXPECT_EQ(readFileBytes(testDataPath(kCamera)), readFileBytes(originals.originalOf(mine)));
        }
    }
    AssetBackupPolicy::clearCurrentPolicy();
}

// The history of edits outlives a failed save: the edits are undone and redone, and saved once there
// is room, equal to the host's same edit.
TEST_F(PhotosTest, ASaveOntoAFullDiskSaysSoAndLeavesThePhotoAndTheEditsAsTheyWere) {
    OriginalsPolicy originals(dir.file("originals"));
    originals.makePolicyCurrent();
    const std::string path = dir.file("photo.jpg");
    copyTestFile(kPortrait, path);
    OwnedPtr<Asset> asset = Asset::create(UniqueID::create(), CString::fromUtf8(path), nullptr, nullptr);
    PictureSession session;
    std::string message;
    ASSERT_TRUE(session.open(asset, CSize(800, 600), &message));
    ASSERT_TRUE(session.makeEditable(&message));
    ASSERT_TRUE(session.apply(MirrorOp::create(false)));
    {
        FaultyFileSystem full;
        full.failWritesAfter(0);
        EXPECT_FALSE(session.save(&message));
    }
    EXPECT_NE(message.find("could not be saved"), std::string::npos) << message;
    EXPECT_EQ(readFileBytes(testDataPath(kPortrait)), readFileBytes(path));
    EXPECT_TRUE(session.image()->isEdited());
    EXPECT_TRUE(session.image()->undo(true));
    EXPECT_FALSE(session.image()->isEdited());
    EXPECT_TRUE(session.image()->redo());
    ASSERT_TRUE(session.save(&message)) << message;
    EXPECT_FALSE(session.image()->isEdited());
    AssetBackupPolicy::clearCurrentPolicy();
    if (!toolAvailable()) return;
    const std::string twin = dir.file("twin.jpg");
    copyTestFile(kPortrait, twin);
    ASSERT_EQ(0, runTool("edit '" + twin + "' '" + twin + "' mirror=h").status);
    EXPECT_TRUE(readFileBytes(twin) == readFileBytes(path));
}

// The real program on a catalogue prepared by an earlier run, whose files are then taken away or
// damaged: it says so and ends normally.
TEST_F(PhotosTest, FilesGoneOrDamagedUnderTheGridAreToldAndTheProgramGoesOn) {
    if (!toolAvailable()) GTEST_SKIP() << "run through CTest, which names the programs";
    copyTestFile(kPortrait, dir.file("photos/a.jpg"));
    copyTestFile(kPortrait, dir.file("photos/b.jpg"));
    const std::string run = "XDG_DATA_HOME='" + dir.file("data") + "' XDG_CONFIG_HOME='" +
                            dir.file("config") +
                            "' SDL_VIDEODRIVER=offscreen '" ORVANTA_PHOTOS "' --size 800x600 --catalog '" +
                            dir.file("catalogue.db") + "' --shots '" + dir.path() + "' --script ";
    writeFileBytes(dir.file("import.txt"), "settle\nwait 200\n");
    ASSERT_EQ(0, runShell(run + "'" + dir.file("import.txt") + "' '" + dir.file("photos") + "'").status);

    std::filesystem::remove(dir.file("photos/a.jpg"));
    writeFileBytes(dir.file("photos/b.jpg"),
                   readFileBytes(dir.file("photos/b.jpg")).substr(0, 200) + std::string(5000, 'x'));
    // Each photo opened from the grid in turn (a click on the first, Return; then the second).
    writeFileBytes(dir.file("open.txt"),
                   "click 90 130\nkey Return\nwait 200\nkey Right Return\nwait 200\nshot after\n");
    const ToolRun opened = runShell(run + "'" + dir.file("open.txt") + "' 2>&1");
    EXPECT_EQ(0, opened.status) << opened.output;
    EXPECT_NE(opened.output.find("a.jpg is no longer there"), std::string::npos) << opened.output;
    EXPECT_NE(opened.output.find("b.jpg cannot be shown"), std::string::npos) << opened.output;
    EXPECT_TRUE(std::filesystem::exists(dir.file("after.png")));

    writeFileBytes(dir.file("bad.txt"), "wait 10\nfly away\n");
    const ToolRun bad = runShell(run + "'" + dir.file("bad.txt") + "' 2>&1");
    EXPECT_EQ(2, bad.status);
    EXPECT_NE(bad.output.find("script line 2 not understood"), std::string::npos) << bad.output;
}

// A second start hands its folder, made absolute, to the copy already running and ends at once. The
// test is the running copy, in a runtime folder of its own.
TEST_F(PhotosTest, ASecondStartHandsItsFolderToTheFirstAndEnds) {
    if (!toolAvailable()) GTEST_SKIP() << "run through CTest, which names the programs";
    struct First : Platform::Window::Handler {
        LRESULT windowProc(HWND, UINT message, WPARAM, LPARAM lParam) override {
            if (message == WM_COPYDATA)
                SingleInstance::crackIncomingMessage(reinterpret_cast<const COPYDATASTRUCT*>(lParam), text);
            return message == WM_COPYDATA;
        }
        CString text;
    } first;
    std::filesystem::create_directories(dir.file("run"));
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    const std::string saved = runtime ? runtime : "";
    setenv("XDG_RUNTIME_DIR", dir.file("run").c_str(), 1);
    HWND window = Platform::Window::create(nullptr, CRect(0, 0, 10, 10), WS_POPUP, &first);
    {
        SingleInstance instance(u"OrvantaPhotos", u"OrvantaPhotosWindow", u"OrvantaPhotosOpen");
        ASSERT_TRUE(instance.isFirstInstance());
        ASSERT_TRUE(instance.listen(window));
        std::atomic<bool> ended{false};
        ToolRun second;
        std::thread start([&] {
            second = runShell("cd '" + dir.path() + "' && XDG_DATA_HOME='" + dir.file("data") +
                              "' XDG_CONFIG_HOME='" + dir.file("config") +
                              "' SDL_VIDEODRIVER=offscreen timeout 60 '" ORVANTA_PHOTOS "' photos 2>&1");
            ended = true;
        });
        // The second start waits until the first has taken the folder.
        while (!ended) {
            pump();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        start.join();
        EXPECT_EQ(0, second.status) << second.output;
        EXPECT_EQ(dir.file("photos"), first.text.toUtf8());
        EXPECT_FALSE(std::filesystem::exists(dir.file("data")));  // it opened no catalogue
    }
    window->destroy();
    if (runtime)
        setenv("XDG_RUNTIME_DIR", saved.c_str(), 1);
    else
        unsetenv("XDG_RUNTIME_DIR");
}

// Wallpaper in the picture view gives the desktop the photo in the session's own settings (GLib's
// keyfile backend under a private configuration folder); a desktop whose settings are not kept is
// told that it does not take its wallpaper from here, and nothing is written.
TEST_F(PhotosTest, WallpaperSetsThePhotoInTheDesktopsSettingsOrSaysItCannot) {
    if (!toolAvailable()) GTEST_SKIP() << "run through CTest, which names the programs";
    if (std::system("command -v gsettings >/dev/null 2>&1") != 0) GTEST_SKIP() << "gsettings is missing";
    copyTestFile(kPortrait, dir.file("photos/a.jpg"));
    writeFileBytes(dir.file("script.txt"),
                   "settle\nclick 90 130\nkey Return\nwait 300\nclick 928 625\nwait 300\n");
    for (const std::string backend : {"keyfile", "memory"}) {
        SCOPED_TRACE(backend);
        TempDir home;
        const std::string session = "env -u XDG_CURRENT_DESKTOP HOME='" + home.path() +
                                    "' XDG_CONFIG_HOME='" + home.file("config") + "' XDG_DATA_HOME='" +
                                    home.file("data") + "' GSETTINGS_BACKEND=" + backend +
                                    " SDL_VIDEODRIVER=offscreen ";
        const ToolRun run =
            runShell(session + "'" ORVANTA_PHOTOS "' --size 1024x640 --catalog '" + home.file("c.db") +
                     "' --script '" + dir.file("script.txt") + "' '" + dir.file("photos") + "' 2>&1");
        ASSERT_EQ(0, run.status) << run.output;
        const std::string bmp = home.file("data") + "/orvanta/wallpaper.bmp";
        const bool kept = backend == "keyfile";
        EXPECT_EQ(kept, std::filesystem::exists(bmp));
        EXPECT_EQ(kept, run.output.find("does not take its wallpaper") == std::string::npos) << run.output;
        if (kept) {
            EXPECT_EQ("'file://" + bmp + "'\n",
                      runShell(session + "gsettings get org.gnome.desktop.background picture-uri").output);
        }
    }
}

// The window's size and the photo open when the program ended come back at the next start.
TEST_F(PhotosTest, TheWindowSizeAndTheLastViewAreRemembered) {
    if (!toolAvailable()) GTEST_SKIP() << "run through CTest, which names the programs";
    copyTestFile(kPortrait, dir.file("photos/a.jpg"));
    const std::string run = "XDG_DATA_HOME='" + dir.file("data") + "' XDG_CONFIG_HOME='" +
                            dir.file("config") +
                            "' SDL_VIDEODRIVER=offscreen '" ORVANTA_PHOTOS "' --catalog '" +
                            dir.file("catalogue.db") + "' --shots '" + dir.path() + "' ";
    writeFileBytes(dir.file("first.txt"), "settle\nclick 90 130\nkey Return\nwait 300\nshot first\n");
    ASSERT_EQ(0, runShell(run + "--size 700x500 --script '" + dir.file("first.txt") + "' '" +
                          dir.file("photos") + "'")
                     .status);
    writeFileBytes(dir.file("second.txt"), "wait 300\nshot second\n");
    ASSERT_EQ(0, runShell(run + "--script '" + dir.file("second.txt") + "'").status);
    const std::string first = readFileBytes(dir.file("first.png")),
                      second = readFileBytes(dir.file("second.png"));
    // The PNG header's width and height, then the whole picture: the same photo on the same screen.
    ASSERT_GT(first.size(), 24u);
    EXPECT_EQ(std::string("\0\0\x02\xbc\0\0\x01\xf4", 8), first.substr(16, 8));
    EXPECT_EQ(first, second);
}

// What users do with the keys, through the real program: each case opens a photo found by the text
// filter, edits it with the shortcuts, saves, and its file must equal `orvanta edit` of the same
// edits in place; the photo not found by the filter is left alone.
TEST_F(PhotosTest, ShortcutsEditTheFilteredPhotoAsTheHostDoes) {
    if (!toolAvailable()) GTEST_SKIP() << "run through CTest, which names the programs";
    struct Case {
        const char* keys;
        const char* host;
    };
    const Case cases[] = {
        {"key r r ctrl+z", "rotate=90"},                     // undo takes back the second turn
        {"key shift+r", "rotate=270"},                       // Shift turns the other way
        {"key m ctrl+z ctrl+y", "mirror=h"},                 // redo brings the mirror back
        {"key m m", "mirror=h mirror=h"},                    // twice mirrored, encoded anew
        {"key r ctrl+z ctrl+z ctrl+y ctrl+y", "rotate=90"},  // past the history's ends nothing breaks
        // The bar's buttons: Fix, Colour, B&W and Sepia.
        {"click 648 16", "picfix"},
        {"click 699 16", "colorize=0.6,0.5,0.4"},
        {"click 756 16", "bw"},
        {"click 811 16", "sepia"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.keys);
        TempDir work;
        copyTestFile(kPortrait, work.file("photos/a-other.jpg"));
        copyTestFile(kPortrait, work.file("photos/b-target.jpg"));
        copyTestFile(kPortrait, work.file("twin.jpg"));
        const std::string script =
            std::string("settle\nclick 400 16\ntype target\nwait 200\nclick 90 130\n") +
            "key Return\nwait 300\n" + c.keys + "\nkey ctrl+s\nwait 300\n";
        writeFileBytes(work.file("script.txt"), script);
        const ToolRun run =
            runShell("XDG_DATA_HOME='" + work.file("data") + "' XDG_CONFIG_HOME='" + work.file("config") +
                     "' SDL_VIDEODRIVER=offscreen '" ORVANTA_PHOTOS "' --size 1024x640 --catalog '" +
                     work.file("c.db") + "' --shots '" + work.path() + "' --script '" +
                     work.file("script.txt") + "' '" + work.file("photos") + "' 2>&1");
        ASSERT_EQ(0, run.status) << run.output;
        ASSERT_EQ(
            0,
            runTool("edit '" + work.file("twin.jpg") + "' '" + work.file("twin.jpg") + "' " + c.host).status);
        EXPECT_TRUE(readFileBytes(work.file("twin.jpg")) == readFileBytes(work.file("photos/b-target.jpg")));
        EXPECT_TRUE(readFileBytes(testDataPath(kPortrait)) == readFileBytes(work.file("photos/a-other.jpg")));
    }
}

// The crop frame, free or of a fixed shape, applied with Enter and saved; Escape drops it.
TEST_F(PhotosTest, TheCropFrameCutsThePhotoToItsShape) {
    if (!toolAvailable()) GTEST_SKIP() << "run through CTest, which names the programs";
    struct Case {
        const char* keys;
        int width, height;  // exactly, for the free frame; else the shape, within a pixel
        bool exact;
    };
    // The frame starts a tenth in from each side (240 x 181 of 300 x 226), a fixed shape within that.
    const Case cases[] = {
        {"key c Return", 240, 181, true},
        {"click 475 16\nkey Return", 1, 1, false},
        {"click 431 16\nkey Return", 4, 3, false},
        {"key c Escape", 300, 226, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.keys);
        TempDir work;
        copyTestFile(kPortrait, work.file("photos/a.jpg"));
        writeFileBytes(work.file("script.txt"), std::string("settle\nclick 90 130\nkey Return\nwait 300\n") +
                                                    c.keys + "\nkey ctrl+s\nwait 300\n");
        ASSERT_EQ(
            0, runShell("XDG_DATA_HOME='" + work.file("data") + "' XDG_CONFIG_HOME='" + work.file("config") +
                        "' SDL_VIDEODRIVER=offscreen '" ORVANTA_PHOTOS "' --size 1024x640 --catalog '" +
                        work.file("c.db") + "' --script '" + work.file("script.txt") + "' '" +
                        work.file("photos") + "'")
                   .status);
        const ToolRun info = runTool("info '" + work.file("photos/a.jpg") + "'");
        ASSERT_EQ(0, info.status);
        int width = 0, height = 0;
        std::sscanf(info.output.substr(info.output.find('\t', info.output.find('\t') + 1)).c_str(),
                    "\t%d\t%d", &width, &height);
        if (c.exact) {
            EXPECT_EQ(c.width, width) << info.output;
            EXPECT_EQ(c.height, height) << info.output;
        } else {
            EXPECT_LE(std::abs(width * c.height - height * c.width), std::max(c.width, c.height))
                << info.output;
            EXPECT_TRUE(width <= 241 && height <= 181 && width >= 180 && height >= 135) << info.output;
        }
    }
}

// Delete asks first (answered yes by a script) and moves the file to the user's trash, never
// deleting it; the catalogue forgets it.
TEST_F(PhotosTest, DeleteMovesThePhotoToTheTrash) {
    if (!toolAvailable()) GTEST_SKIP() << "run through CTest, which names the programs";
    copyTestFile(kPortrait, dir.file("photos/a.jpg"));
    writeFileBytes(dir.file("script.txt"), "settle\nclick 90 130\nkey Delete\nwait 200\n");
    const ToolRun run =
        runShell("XDG_DATA_HOME='" + dir.file("data") + "' XDG_CONFIG_HOME='" + dir.file("config") +
                 "' SDL_VIDEODRIVER=offscreen '" ORVANTA_PHOTOS "' --catalog '" + dir.file("c.db") +
                 "' --script '" + dir.file("script.txt") + "' '" + dir.file("photos") + "' 2>&1");
    ASSERT_EQ(0, run.status) << run.output;
    EXPECT_NE(run.output.find("Move " + dir.file("photos/a.jpg") + " to the trash? (answered yes)"),
              std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(dir.file("photos/a.jpg")));
    EXPECT_EQ(readFileBytes(testDataPath(kPortrait)), readFileBytes(dir.file("data/Trash/files/a.jpg")));
    PhotoLibrary library;
    ASSERT_TRUE(library.open(dir.file("c.db")));
    EXPECT_EQ(0, library.catalogue()->getCount());
}

// Two photos selected and printed two a page on the private print server's second printer: the
// print dialog, the preview's layout and its Print, all from the keyboard; one page holding both
// photos' own JPEG blocks reaches the printer.
TEST_F(PhotosTest, SelectedPhotosPrintTwoAPageOnTheChosenPrinter) {
    if (!toolAvailable()) GTEST_SKIP() << "run through CTest, which names the programs";
    if (!CupsServer::available()) GTEST_SKIP() << "cupsd is not installed (the cups-daemon package)";
    CupsServer server;
    copyTestFile(kPortrait, dir.file("photos/a.jpg"));
    copyTestFile(kPortrait, dir.file("photos/b.jpg"));
    writeFileBytes(dir.file("script.txt"),
                   "settle\nclick 90 130\nkey shift+Right\nkey ctrl+p\nwait 300\n"
                   "key alt+r Down alt+p\nwait 500\nkey alt+l Down\nwait 500\nkey alt+p\nwait 300\n");
    const ToolRun run =
        runShell("XDG_DATA_HOME='" + dir.file("data") + "' XDG_CONFIG_HOME='" + dir.file("config") +
                 "' SDL_VIDEODRIVER=offscreen '" ORVANTA_PHOTOS "' --catalog '" + dir.file("c.db") +
                 "' --script '" + dir.file("script.txt") + "' '" + dir.file("photos") + "' 2>&1");
    ASSERT_EQ(0, run.status) << run.output;
    ASSERT_NE(run.output.find("sent to Photo as job 1"), std::string::npos) << run.output << server.log();
    const std::string pdf = server.waitForJob(1);
    ASSERT_FALSE(pdf.empty()) << server.log();
    const ToolRun info = runShell("pdfinfo '" + pdf + "'");
    EXPECT_NE(info.output.find("Pages:           1\n"), std::string::npos) << info.output;
    const ToolRun images =
        runShell("cd '" + dir.path() + "' && pdfimages -j '" + pdf + "' img && cat img-*.jpg");
    const std::string both = readFileBytes(testDataPath(kPortrait)) + readFileBytes(testDataPath(kPortrait));
    EXPECT_TRUE(images.output == both)
        << images.output.size() << " bytes of JPEG on the page, not " << both.size();
}

}  // namespace

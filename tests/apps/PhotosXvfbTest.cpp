// Orvanta Photos end to end on a private X server: the real program, driven by xdotool as a user
// would drive it. The photo on the screen is compared with an independent decoding of its file, and
// the file the program saves after a red-eye click with what `orvanta edit` makes of the same click.
// Import takes two photos of a directory camera through the wizard's windows into the catalogue,
// the choice read back from the screen as it is made.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "apps/photos/PhotoLibrary.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/store/PropertyList.h"
#include "tests/support/DirectoryCamera.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/ToolRunner.h"
#include "tests/support/XvfbServer.h"

using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kViewBackground = 0x303030;
constexpr std::uint32_t kChosenFrame = 0xFFFF00;

// The settings an application run keeps to itself, in the test's folder.
std::string privateEnvironment(const TempDir& dir) {
    return "XDG_DATA_HOME='" + dir.file("data") + "' XDG_CONFIG_HOME='" + dir.file("config") +
           "' XDG_RUNTIME_DIR='" + dir.path() + "' FONTCONFIG_FILE='" ORVANTA_TEST_FONTS_CONF "'";
}

// The pixels of a file decoded by ImageMagick, as 0x00RRGGBB.
std::vector<std::uint32_t> decoded(const std::string& path) {
    std::vector<std::uint32_t> pixels;
    FILE* pipe = popen(("convert '" + path + "' -depth 8 rgb:- 2>/dev/null").c_str(), "r");
    if (!pipe) return pixels;
    unsigned char rgb[3];
    while (std::fread(rgb, 1, 3, pipe) == 3) pixels.push_back(rgb[0] << 16 | rgb[1] << 8 | rgb[2]);
    pclose(pipe);
    return pixels;
}

TEST(PhotosXvfb, ARedEyeClickedOnTheScreenIsSavedAsTheHostMakesIt) {
    ORVANTA_REQUIRE_TESTDATA();
    if (!toolAvailable()) GTEST_SKIP() << "the orvanta host is not named ($ORVANTA_TOOL)";
    XvfbServer server(1024, 768);
    if (!server.isRunning()) GTEST_SKIP() << "Xvfb, xdotool, xwd or ImageMagick is missing";
    TempDir dir;
    const std::string source = testDataPath("redeye/redeye-boldredeye-nikon-d40-300x226.jpg");
    std::filesystem::create_directories(dir.file("photos"));
    writeFileBytes(dir.file("photos/portrait.jpg"), readFileBytes(source));
    writeFileBytes(dir.file("twin.jpg"), readFileBytes(source));

    const std::string environment = privateEnvironment(dir);
    std::thread app([&] {
        server.run(environment + " '" ORVANTA_PHOTOS "' --size 800x600 --catalog '" +
                   dir.file("catalogue.db") + "' '" + dir.file("photos") + "' 2>/dev/null");
    });
    const auto xdotool = [&](const std::string& arguments) { return server.run("xdotool " + arguments); };
    ASSERT_EQ(server.run("timeout 30 xdotool search --sync --name 'Orvanta Photos' >/dev/null"), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));

    // The window stands at (40, 40); its first cell's picture is at (90, 133) inside it.
    EXPECT_EQ(xdotool("mousemove 130 173 click 1 sleep 0.3 key Return sleep 1"), 0);
    std::vector<std::uint32_t> screen;
    int width = 0, height = 0;
    ASSERT_TRUE(server.screenshot(screen, width, height));
    // The photo stands in the view at its own size (it is smaller than the view): find it.
    int left = width, top = height, right = 0, bottom = 0;
    for (int y = 120; y < 600; ++y)
        for (int x = 50; x < 830; ++x)
            if (screen[y * width + x] != kViewBackground) {
                left = std::min(left, x), top = std::min(top, y);
                right = std::max(right, x + 1), bottom = std::max(bottom, y + 1);
            }
    ASSERT_EQ(300, right - left);
    ASSERT_EQ(226, bottom - top);
    const std::vector<std::uint32_t> reference = decoded(source);
    ASSERT_EQ(reference.size(), 300u * 226u);
    int differing = 0;
    for (int y = 0; y < 226; ++y)
        for (int x = 0; x < 300; ++x)
            differing += screen[(top + y) * width + left + x] != reference[y * 300 + x];
    EXPECT_EQ(0, differing);

    // Red-eye mode, a click on the left pupil (picture pixel (83, 101)), saved, closed.
    EXPECT_EQ(xdotool("key e sleep 0.2 mousemove " + std::to_string(left + 83) + " " +
                      std::to_string(top + 101) + " click 1 sleep 0.5 key ctrl+s sleep 1 key ctrl+q"),
              0);
    app.join();
    const ToolRun run = runTool("edit '" + dir.file("twin.jpg") + "' '" + dir.file("twin.jpg") +
                                "' redeye=" + std::to_string(83.5 / 300) + "," + std::to_string(101.5 / 226));
    ASSERT_EQ(0, run.status) << run.errors;
    EXPECT_NE(readFileBytes(source), readFileBytes(dir.file("photos/portrait.jpg")));
    EXPECT_EQ(readFileBytes(dir.file("twin.jpg")), readFileBytes(dir.file("photos/portrait.jpg")));
}

// The wizard's window: where it stands on the screen, or false if it did not come.
bool findWindow(const XvfbServer& server, const TempDir& dir, const std::string& name, int* x, int* y) {
    const std::string answer = dir.file("geometry");
    if (server.run("timeout 30 xdotool search --sync --name '" + name + "' getwindowgeometry --shell > '" +
                   answer + "'") != 0)
        return false;
    const std::string text = readFileBytes(answer);
    return std::sscanf(text.c_str() + text.find("X="), "X=%d\nY=%d", x, y) == 2;
}

TEST(PhotosXvfb, ImportTakesTheTwoPhotosChosenOnTheScreenIntoTheCatalogue) {
    ORVANTA_REQUIRE_TESTDATA();
    XvfbServer server(1024, 768);
    if (!server.isRunning()) GTEST_SKIP() << "Xvfb, xdotool, xwd or ImageMagick is missing";
    TempDir dir;
    DirectoryCamera camera(6, false);
    fs::create_directories(dir.file("sane"));
    fs::create_directories(dir.file("tmp"));
    int status = -1;
    std::thread app([&] {
        status =
            server.run(privateEnvironment(dir) + " SANE_CONFIG_DIR='" + dir.file("sane") + "' TMPDIR='" +
                       dir.file("tmp") + "' timeout 120 '" ORVANTA_PHOTOS "' --size 800x600 --catalog '" +
                       dir.file("catalogue.db") + "' --camera '" + camera.id() + "' 2>/dev/null");
    });
    const auto xdotool = [&](const std::string& arguments) { return server.run("xdotool " + arguments); };
    ASSERT_EQ(server.run("timeout 30 xdotool search --sync --name 'Orvanta Photos' >/dev/null"), 0);
    EXPECT_EQ(xdotool("mousemove 400 300 sleep 0.5 key ctrl+i"), 0);
    int left = 0, top = 0;
    ASSERT_TRUE(findWindow(server, dir, "Import from Directory Browse", &left, &top))
        << "the wizard did not open (a device of this machine's own asks to be chosen first?)";
    const auto click = [&](int x, int y, const std::string& keys = "") {
        const std::string at = std::to_string(left + x) + " " + std::to_string(top + y);
        return keys.empty() ? xdotool("mousemove " + at + " click 1 sleep 0.4")
                            : xdotool("keydown " + keys + " mousemove " + at + " click 1 keyup " + keys +
                                      " sleep 0.4");
    };
    // Which of the first row's five cells wear the chosen frame, read down each cell's left edge,
    // once the screen shows what is expected or ten seconds have passed.
    const auto framed = [&](const std::string& expected) {
        std::string cells;
        for (int i = 0; i < 50 && cells != expected; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            std::vector<std::uint32_t> screen;
            int width = 0, height = 0;
            if (!server.screenshot(screen, width, height)) continue;
            cells.clear();
            for (int cell = 0; cell < 5; ++cell) {
                int yellow = 0;
                for (int y = 40; y < 140; ++y)
                    yellow += screen[(top + y) * width + left + 13 + 120 * cell] == kChosenFrame;
                cells += yellow > 90 ? 'X' : '.';
            }
        }
        return cells;
    };
    // Once the camera has been looked through, everything is chosen.
    ASSERT_EQ(framed("XXXXX"), "XXXXX");
    EXPECT_EQ(click(149, 458), 0);  // Select none
    EXPECT_EQ(framed("....."), ".....");
    EXPECT_EQ(click(68, 90), 0);
    EXPECT_EQ(click(308, 90, "ctrl"), 0);
    EXPECT_EQ(framed("X.X.."), "X.X..");
    EXPECT_EQ(click(530, 503), 0);  // Next
    EXPECT_EQ(framed("....."), ".....") << "the settings page, where the grid was";
    // The folder, typed over the one offered; Return starts the copy.
    EXPECT_EQ(click(280, 57), 0);
    EXPECT_EQ(xdotool("key ctrl+a type --delay 5 '" + dir.file("imported") + "'"), 0);
    EXPECT_EQ(xdotool("key Return"), 0);
    // Finish stands where Next stood; until the copy is over it is a Next that is turned off.
    bool closed = false;
    for (int i = 0; i < 60 && !closed; ++i) {
        EXPECT_EQ(click(530, 503), 0);
        closed = server.run("xdotool search --name 'Import from Directory Browse' >/dev/null") != 0;
    }
    EXPECT_TRUE(closed) << "the wizard ended on Finish";
    // The keyboard is the main window's again once the wizard has gone.
    EXPECT_EQ(xdotool("mousemove 400 300 sleep 0.3 key ctrl+q"), 0);
    app.join();
    EXPECT_EQ(status, 0) << "the program ended by itself";

    OrvantaPhotos::PhotoLibrary library;
    ASSERT_TRUE(library.open(dir.file("catalogue.db"))) << library.lastError();
    ASSERT_EQ(library.catalogue()->getCount(), 2);
    for (int i = 0; i < 2; ++i) {
        Orvanta::OwnedPtr<Orvanta::Asset> asset = library.catalogue()->getAsset(i);
        Orvanta::PropertyList* properties = asset->getProperties();
        const fs::path copy =
            fs::path(properties->getValue(Orvanta::Asset::kPropFolder).asString().toUtf8()) /
            properties->getValue(Orvanta::Asset::kPropFilename).asString().toUtf8();
        EXPECT_EQ(copy.parent_path(), fs::path(dir.file("imported")));
        std::string original;
        for (const std::string& file : camera.files())
            if (fs::path(file).filename() == copy.filename())
                original = readFileBytes(camera.localPath(file));
        EXPECT_EQ(readFileBytes(copy), original) << copy;
    }
    EXPECT_TRUE(fs::is_empty(dir.file("tmp"))) << "no temporary file is left";
}

}  // namespace

// Orvanta Photos end to end on a private X server: the real program, driven by xdotool as a user
// would drive it. The photo on the screen is compared with an independent decoding of its file, and
// the file the program saves after a red-eye click with what `orvanta edit` makes of the same click.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/ToolRunner.h"
#include "tests/support/XvfbServer.h"

using namespace OrvantaTest;

namespace {

constexpr std::uint32_t kViewBackground = 0x303030;

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

    const std::string environment = "XDG_DATA_HOME='" + dir.file("data") + "' XDG_CONFIG_HOME='" +
                                    dir.file("config") + "' XDG_RUNTIME_DIR='" + dir.path() +
                                    "' FONTCONFIG_FILE='" ORVANTA_TEST_FONTS_CONF "'";
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

}  // namespace

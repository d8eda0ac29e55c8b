// orvanta wallpaper, run as a user runs it, each run in a session of its own (private configuration
// and data folders, GLib's keyfile settings backend, the offscreen display), the settings it left read
// back with gsettings; and the desktops, schemas and backends it refuses without writing anything.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/desktop/Desktop.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestPictures.h"
#include "tests/support/ToolRunner.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class WallpaperCommand : public ::testing::Test {
protected:
    void SetUp() override {
        if (!toolAvailable()) GTEST_SKIP() << "ORVANTA_TOOL is not set (run through ctest)";
        orvantaIUInit();
        OwnedPtr<Dib> picture = makeDib(640, 480, [](int x, int y) { return Rgb{x / 3, y / 2, 90}; });
        ASSERT_TRUE(Desktop::writeAsBmp(picture, dir.wide("photo.bmp")));
        std::filesystem::create_directory(dir.file("no-schemas"));
    }
    void TearDown() override { orvantaIUDeInit(); }

    // A shell command in the private session, with `extra` variables set.
    std::string session(const std::string& extra, const std::string& command) const {
        return "env -u XDG_CURRENT_DESKTOP HOME='" + dir.path() + "' XDG_CONFIG_HOME='" + dir.file("config") +
               "' XDG_DATA_HOME='" + dir.file("data") +
               "' GSETTINGS_BACKEND=keyfile SDL_VIDEODRIVER=offscreen " + extra + " " + command;
    }
    std::string setting(const std::string& key) const {
        return runShell(session("", "gsettings get org.gnome.desktop.background " + key)).output;
    }

    TempDir dir;
};

}  // namespace

TEST_F(WallpaperCommand, ThePictureIsScaledWrittenAndSetCentredInTheDesktopsSettings) {
    const std::string wallpaper = dir.file("data") + "/orvanta/wallpaper.bmp";
    const ToolRun fill =
        runShell(session("", "{tool} wallpaper '" + dir.file("photo.bmp") + "' --fill --screen 800x500"));
    ASSERT_EQ(0, fill.status) << fill.errors;
    EXPECT_EQ(wallpaper + "\t800\t600\n", fill.output);
    EXPECT_EQ("'file://" + wallpaper + "'\n", setting("picture-uri"));
    EXPECT_EQ("'file://" + wallpaper + "'\n", setting("picture-uri-dark"));
    EXPECT_EQ("'centered'\n", setting("picture-options"));
    // The screen of the offscreen display, with the picture kept whole inside it.
    const ToolRun fit = runShell(session("", "{tool} wallpaper '" + dir.file("photo.bmp") + "'"));
    ASSERT_EQ(0, fit.status) << fit.errors;
    EXPECT_EQ(wallpaper + "\t1024\t768\n", fit.output);
}

TEST_F(WallpaperCommand, ADesktopThatDoesNotReadGnomesSettingsIsRefusedAndNothingIsWritten) {
    for (const std::string& other :
         {std::string("XDG_CURRENT_DESKTOP=KDE"), std::string("GSETTINGS_BACKEND=memory"),
          "XDG_DATA_DIRS='" + dir.file("no-schemas") + "'"}) {
        const ToolRun run =
            runShell(session(other, "{tool} wallpaper '" + dir.file("photo.bmp") + "' --screen 800x600"));
        EXPECT_EQ(3, run.status) << other;
        EXPECT_FALSE(std::filesystem::exists(dir.file("data"))) << other;
    }
    writeFileBytes(dir.file("broken.jpg"), "not a picture");
    EXPECT_EQ(
        1,
        runShell(session("", "{tool} wallpaper '" + dir.file("broken.jpg") + "' --screen 800x600")).status);
    EXPECT_EQ(2, runShell(session("", "{tool} wallpaper --fill")).status);
}

// The user directories file (user-dirs.dirs) read as the reference reader of xdg-user-dirs reads it.

#include "orvanta/platform/UserDirectories.h"

#include <gtest/gtest.h>

using namespace Orvanta;

TEST(UserDirectories, AFolderIsTheLastValidLineForItsKeyHomeRelativeOrAbsolute) {
    const struct {
        const char* text;
        std::string pictures;
    } lines[] = {
        {"XDG_PICTURES_DIR=\"$HOME/Bilder\"\n", "/home/u/Bilder"},
        {"# XDG_PICTURES_DIR=\"/x\"\n  XDG_PICTURES_DIR = \"/srv/p\\\"q\\\\\"", "/srv/p\"q\\"},
        {"XDG_PICTURES_DIR=\"/a\"\nXDG_PICTURES_DIR=\"$HOME\"\nXDG_PICTURES_DIR=\"relative\"\n", "/home/u"},
        {"XDG_PICTURES_DIR=\"$HOMEX/y\"\nXDG_PICTURESQUE_DIR=\"/a\"\nXDG_PICTURES_DIR=\"/open", ""},
    };
    for (const auto& line : lines)
        EXPECT_EQ(line.pictures, Platform::parseUserDirectory(line.text, "PICTURES", "/home/u"));
}

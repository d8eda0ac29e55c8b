// The EXIF block rewritten around a new thumbnail, byte for byte.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orvanta/codecs/ExifThumbnail.h"

using namespace Orvanta;

// A big-endian block by hand: the TIFF header, then IFD0 with one entry (Make "Nik") and no next
// directory, ending at offset 0x1A.
TEST(ExifSplice, ANewThumbnailIsSplicedInAndEveryOtherByteStaysWhereItWas) {
    const std::string header("Exif\0\0MM\0\x2A\0\0\0\x08", 14);
    const std::string ifd0("\0\x01\x01\x0F\0\x02\0\0\0\x04Nik\0\0\0\0\0", 18);
    const auto save = [](const std::string& block, const std::string& thumbnail) {
        const auto bytes = [](const std::string& s) {
            return reinterpret_cast<const unsigned char*>(s.data());
        };
        auto exif = ExifThumbnail::load(bytes(block), static_cast<int>(block.size()));
        EXPECT_TRUE(exif && exif->setThumbnail(bytes(thumbnail), static_cast<int>(thumbnail.size())));
        const std::vector<unsigned char> saved = exif ? exif->save() : std::vector<unsigned char>();
        return std::string(saved.begin(), saved.end());
    };
    // A new IFD1 at 0x1A, linked from IFD0: compression 6, resolutions 72/1 per inch (at 0x68 and
    // 0x70), the thumbnail at 0x78, 4 bytes long.
    std::string ifd1(
        "\0\x06"
        "\x01\x03\0\x03\0\0\0\x01\0\x06\0\0"
        "\x01\x1A\0\x05\0\0\0\x01\0\0\0\x68"
        "\x01\x1B\0\x05\0\0\0\x01\0\0\0\x70"
        "\x01\x28\0\x03\0\0\0\x01\0\x02\0\0"
        "\x02\x01\0\x04\0\0\0\x01\0\0\0\x78"
        "\x02\x02\0\x04\0\0\0\x01\0\0\0\x04"
        "\0\0\0\0"
        "\0\0\0\x48\0\0\0\x01\0\0\0\x48\0\0\0\x01",
        94);
    std::string linked = header + ifd0;
    linked[14 + 17] = 0x1A;
    const std::string first = save(header + ifd0, std::string("\xFF\xD8\xFF\xD9", 4));
    EXPECT_EQ(linked + ifd1 + std::string("\xFF\xD8\xFF\xD9", 4), first);
    // The thumbnail ends the block, so the next one takes its place.
    const std::string second = save(first, std::string("\xFF\xD8\0\0\xFF\xD9", 6));
    ifd1[73] = 6;
    EXPECT_EQ(linked + ifd1 + std::string("\xFF\xD8\0\0\xFF\xD9", 6), second);
    // Removed: the bytes go and IFD0 no longer links the directory.
    EXPECT_EQ(header + ifd0 + ifd1, save(second, ""));
}

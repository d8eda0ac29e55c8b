#pragma once
// Constants of the JPEG files the codec parses and writes (see docs/formats/jpeg.md).

namespace Orvanta::JpegFormat {

// Second bytes of the markers the library looks at.
constexpr int kStartOfImage = 0xD8;
constexpr int kStartOfScan = 0xDA;
constexpr int kApp0 = 0xE0;   // JFIF
constexpr int kApp1 = 0xE1;   // EXIF, XMP
constexpr int kApp13 = 0xED;  // Photoshop, IPTC
constexpr int kComment = 0xFE;

// Not a marker: the bytes from the end of the first scan header to the end of the file (the
// entropy-coded data and everything behind it). It has no header of its own.
constexpr int kEntropyData = 4096;

// FF, the marker, and two bytes of length, most significant first.
constexpr int kSegmentHeaderSize = 4;
// The largest contents a segment's 16-bit length (which counts itself) can describe.
constexpr int kMaxSegmentContents = 65535 - 2;
// Shorter files are not parsed at all.
constexpr int kMinimumFileSize = 50;
// Parsing a segment needs at least this many bytes left in the file.
constexpr int kMinimumSegmentRoom = 16;

// An EXIF block is an APP1 segment whose contents begin with these six bytes, then a TIFF header
// ("II" or "MM"); the block proper starts at the TIFF header.
constexpr unsigned char kExifHeader[6] = {'E', 'x', 'i', 'f', 0, 0};
constexpr int kExifHeaderSize = 6;
constexpr int kMinimumExifSegment = 14;

// The TIFF structure of an EXIF block, as far as the thumbnail needs it. Offsets count from the
// TIFF header, which begins "II" (little-endian) or "MM" (big-endian), then 42, then the offset of
// the first directory (IFD0). A directory is a 16-bit entry count, entries of 12 bytes (tag, type,
// count, a 4-byte value or offset), and the 32-bit offset of the next directory (0: none). IFD1, the
// second, describes the thumbnail.
constexpr int kTiffHeaderSize = 8;
constexpr int kTiffMagic = 42;
constexpr int kIfdEntrySize = 12;
constexpr int kTagCompression = 0x0103;
constexpr int kTagXResolution = 0x011A;
constexpr int kTagYResolution = 0x011B;
constexpr int kTagResolutionUnit = 0x0128;
constexpr int kTagThumbnailOffset = 0x0201;  // JPEGInterchangeFormat
constexpr int kTagThumbnailLength = 0x0202;  // JPEGInterchangeFormatLength
constexpr int kTypeShort = 3;
constexpr int kTypeLong = 4;
constexpr int kTypeRational = 5;  // two LONGs, numerator and denominator
constexpr int kCompressionJpeg = 6;
// What a new thumbnail directory says of its picture: 72 pixels per inch.
constexpr int kThumbnailResolution = 72;
constexpr int kResolutionUnitInch = 2;

}  // namespace Orvanta::JpegFormat

#include "orvanta/codecs/IntelJpegCodec.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ExifThumbnail.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/codecs/JpegFormat.h"
#include "orvanta/codecs/JpegMarkerMap.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/Error.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/PixelHeap.h"
#include "orvanta/pixels/StaticDib.h"
#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/JpegErrorJump.h"
#include "orvanta/platform/JpegLibrary.h"
#include "orvanta/platform/JpegRowWriter.h"
#include "orvanta/platform/JpegTransform.h"
#include "orvanta/platform/ReplacementFile.h"
#include "orvanta/platform/RewriteLock.h"

namespace Orvanta {

using namespace Platform;

namespace {

// The encoder's quality setting for a quality of the codec.
int encoderQuality(ImageQuality quality) {
    return quality == ImageQualityDraft ? 65 : 85;
}

// The chroma sampling of a written file: finer for high quality.
IJL_JPGSUBSAMPLING subsamplingFor(ImageQuality quality, int channels) {
    if (channels == 3) return quality == ImageQualityHigh ? IJL_422 : IJL_411;
    return quality == ImageQualityHigh ? IJL_4224 : IJL_4114;
}

// One record of the engine, set up for one call and freed at its end, whatever way it ends.
class JpegRecord {
public:
    JpegRecord(const char16_t* path, const void* data, int size, ImageQuality quality) {
        std::memset(&props, 0, sizeof props);
        if (ijlInit(&props) != IJL_OK) throw Error(u"Cannot initialize Intel Jpeg library\n");
        if (path) {
            mPath = CString(path).toUtf8();
            props.JPGFile = mPath.data();
        } else {
            props.JPGBytes = static_cast<unsigned char*>(const_cast<void*>(data));
            props.JPGSizeBytes = size;
        }
        props.jquality = encoderQuality(quality);
    }
    ~JpegRecord() { ijlFree(&props); }
    JpegRecord(const JpegRecord&) = delete;
    JpegRecord& operator=(const JpegRecord&) = delete;

    JPEG_CORE_PROPERTIES props;

private:
    std::string mPath;
};

void readHeader(JPEG_CORE_PROPERTIES& p, CSize* size, ImageQuality* quality) {
    if (ijlRead(&p, p.JPGFile ? IJL_JFILE_READPARAMS : IJL_JBUFF_READPARAMS) != IJL_OK || p.JPGWidth <= 0 ||
        p.JPGHeight <= 0)
        throw Exception(u"Cannot read JPEG header");
    switch (p.JPGChannels) {
        case 1:
            p.JPGColor = IJL_G;
            p.DIBChannels = 3;
            p.DIBColor = IJL_BGR;
            break;
        case 3:
            p.JPGColor = IJL_YCBCR;
            p.DIBChannels = 3;
            p.DIBColor = IJL_BGR;
            break;
        case 4:
            p.JPGColor = IJL_YCBCRA_FPX;
            p.DIBChannels = 4;
            p.DIBColor = IJL_RGBA_FPX;
            break;
        default:
            p.JPGColor = IJL_OTHER;
            p.DIBChannels = p.JPGChannels;
            p.DIBColor = IJL_OTHER;
            break;
    }
    if (size) *size = CSize(p.JPGWidth, p.JPGHeight);
    if (quality)
        *quality = p.jquality >= 85   ? ImageQualityHigh
                   : p.jquality >= 65 ? ImageQualityDraft
                                      : ImageQualityNormal;
}

// The power of two the decoder divides by: the largest that keeps the picture at least as big as
// the box. A box with a side of 0 or less gives the eighth.
int reductionFor(int width, int height, int maxWidth, int maxHeight) {
    if (!(maxWidth > 0 || maxHeight >= 1)) return 1;
    const double r = Image::calcScale(width, height, maxWidth, maxHeight, false, false);
    if (r <= 0.125) return 8;
    if (r <= 0.25) return 4;
    if (r <= 0.5) return 2;
    return 1;
}

int decodeMode(int reduction, bool fromFile) {
    const int file = fromFile ? 0 : 1;
    switch (reduction) {
        case 2:
            return IJL_JFILE_READONEHALF + file;
        case 4:
            return IJL_JFILE_READONEQUARTER + file;
        case 8:
            return IJL_JFILE_READONEEIGHTH + file;
        default:
            return IJL_JFILE_READWHOLEIMAGE + file;
    }
}

BITMAPINFO topDownInfo(int width, int height, int bitCount) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = static_cast<WORD>(bitCount);
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

// Some decodes have been seen to report success and leave the picture empty: 18 or more black
// pixels among the 20 that follow the centre in scan order betray it.
bool centreLooksEmpty(const Dib& dib) {
    const CSize size = dib.getSize();
    const int channels = dib.getBytesPerPixel();
    const int stride = dib.getStride();
    const unsigned char* bits = dib.getBits();
    int x = size.cx / 2, y = size.cy / 2, black = 0;
    for (int walked = 0; walked < 20; ++walked) {
        const unsigned char* p = bits + static_cast<std::ptrdiff_t>(y) * stride + x * channels;
        if (p[0] == 0 && p[1] == 0 && p[2] == 0) ++black;
        if (++x == size.cx) {
            x = 0;
            if (++y == size.cy) break;
        }
    }
    return black >= 18;
}

// A four-channel decode holds ink values: each colour times the black byte is what a viewer shows.
void applyBlack(unsigned char* bits, int width, int height, int stride) {
    for (int y = 0; y < height; ++y) {
        unsigned char* p = bits + static_cast<std::ptrdiff_t>(y) * stride;
        for (int x = 0; x < width; ++x, p += 4) {
            const unsigned k = p[3];
            p[0] = static_cast<unsigned char>((p[0] * k + 1) / 256);
            p[1] = static_cast<unsigned char>((p[1] * k + 1) / 256);
            p[2] = static_cast<unsigned char>((p[2] * k + 1) / 256);
        }
    }
}

struct PixelBlockDeleter {
    void operator()(unsigned char* block) const { PixelHeap::release(block); }
};

// The first APP1 segment that holds an EXIF block, which is where EXIF readers look for it.
const JpegMarkerMap::Segment* findExifSegment(const JpegMarkerMap& map) {
    for (int i = 0; const JpegMarkerMap::Segment* segment = map.getSegment(JpegFormat::kApp1, i); ++i) {
        if (segment->length >= JpegFormat::kMinimumExifSegment &&
            std::memcmp(map.getData() + segment->offset, JpegFormat::kExifHeader,
                        JpegFormat::kExifHeaderSize) == 0)
            return segment;
    }
    return nullptr;
}

// The access and modification times of the file being replaced, given back to its new version.
void keepTimes(ReplacementFile& out) {
    out.keepTimes(out.original().st_atim, out.original().st_mtim);
}

// The state of a plain libjpeg call lives on the heap, so that nothing the long jump returns to
// sits in a register that libjpeg's frames may have changed.
struct LibjpegDecode {
    JpegErrorJump errors;
    jpeg_decompress_struct info;
    std::vector<unsigned char> inks;
    DibSection* dib = nullptr;
};

struct LibjpegEncode {
    JpegErrorJump errors;
    jpeg_compress_struct info;
    jpeg_destination_mgr fixed;
    bool overflow = false;
    unsigned char* grown = nullptr;
    unsigned long grownSize = 0;
    std::vector<unsigned char> row;
};

}  // namespace

IntelJpegCodec* IntelJpegCodec::create() {
    return new (std::nothrow) IntelJpegCodec();
}

IntelJpegCodec::IntelJpegCodec() {
    mExtensions.push_back(u"jpg");
    mExtensions.push_back(u"jpeg");
}

bool IntelJpegCodec::useEmbeddedThumbnail() {
    return CodecManager::isFastThumbnailingEnabled();
}

bool IntelJpegCodec::getInfo(const char16_t* path, CSize* size, ImageQuality* quality) {
    JpegRecord record(path, nullptr, 0, ImageQualityHigh);
    readHeader(record.props, size, quality);
    return true;
}

bool IntelJpegCodec::getInfoFromMemory(const void* data, int size, CSize* imageSize, ImageQuality* quality) {
    JpegRecord record(nullptr, data, size, ImageQualityHigh);
    readHeader(record.props, imageSize, quality);
    return true;
}

Dib* IntelJpegCodec::read(const char16_t* path, CSize* originalSize, int maxHeight, int maxWidth) {
    return readCommon(path, nullptr, 0, originalSize, maxHeight, maxWidth);
}

Dib* IntelJpegCodec::readFromMemory(const void* data, int size, CSize* originalSize, int maxHeight,
                                    int maxWidth) {
    return readCommon(nullptr, data, size, originalSize, maxHeight, maxWidth);
}

Dib* IntelJpegCodec::readCommon(const char16_t* path, const void* data, int size, CSize* originalSize,
                                int maxHeight, int maxWidth) {
    if (originalSize) *originalSize = CSize(0, 0);
    try {
        JpegRecord record(path, data, size, ImageQualityHigh);
        JPEG_CORE_PROPERTIES& p = record.props;
        readHeader(p, nullptr, nullptr);

        const int s = reductionFor(p.JPGWidth, p.JPGHeight, maxWidth, maxHeight);
        p.DIBWidth = (p.JPGWidth + s - 1) / s;
        p.DIBHeight = (p.JPGHeight + s - 1) / s;
        const long long rowBytes = static_cast<long long>(p.DIBWidth) * p.DIBChannels;
        p.DIBPadBytes = static_cast<int>(((rowBytes + 3) & ~3LL) - rowBytes);
        const long long blockSize = (rowBytes + p.DIBPadBytes) * p.DIBHeight;
        // PixelHeap hands out zeroed blocks, so the stretch from the centre pixel that the check
        // below reads is black unless the decoder writes it.
        std::unique_ptr<unsigned char, PixelBlockDeleter> block(
            blockSize > 0 && blockSize <= INT_MAX ? PixelHeap::allocate(static_cast<std::size_t>(blockSize))
                                                  : nullptr);
        if (!block) throw Exception(u"Cannot allocate memory for JPEG\n");
        p.DIBBytes = block.get();
        if (ijlRead(&p, decodeMode(s, path != nullptr)) != IJL_OK)
            throw Exception(u"Cannot read JPEG data from file\n");
        const int stride = static_cast<int>(rowBytes) + p.DIBPadBytes;
        if (p.DIBColor == IJL_RGBA_FPX) applyBlack(block.get(), p.DIBWidth, p.DIBHeight, stride);

        if (p.DIBChannels != 3 && p.DIBChannels != 4) throw Exception(u"Unsupported number of channels");
        OwnedPtr<Dib> dib =
            StaticDib::create(topDownInfo(p.DIBWidth, p.DIBHeight, p.DIBChannels * 8), block.get());
        if (!dib) throw Exception(u"Cannot allocate memory for JPEG\n");
        block.release();
        if (path && centreLooksEmpty(*dib)) throw Exception(u"Bad initial image decode");
        if (originalSize) *originalSize = CSize(p.JPGWidth, p.JPGHeight);
        return dib.detach();
    } catch (const Exception&) {
        if (!path) throw;
        if (Dib* second = readWithLibjpeg(path, originalSize)) return second;
        throw;
    }
}

Dib* IntelJpegCodec::readWithLibjpeg(const char16_t* path, CSize* originalSize) {
    FileContents file;
    if (!file.open(CString(path).toUtf8()) || file.size() == 0) return nullptr;
    std::unique_ptr<LibjpegDecode> job(new (std::nothrow) LibjpegDecode());
    if (!job) return nullptr;
    LibjpegDecode* const d = job.get();
    d->info.err = d->errors.install();
    if (setjmp(d->errors.jump)) {
        jpeg_destroy_decompress(&d->info);
        delete d->dib;
        return nullptr;
    }
    jpeg_create_decompress(&d->info);
    d->errors.watchScans(&d->info);
    jpeg_mem_src(&d->info, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&d->info, TRUE);
    const bool inks = d->info.jpeg_color_space == JCS_CMYK || d->info.jpeg_color_space == JCS_YCCK;
    // Grey, YCbCr and RGB pictures come out blue first; ink pictures are turned into colours row by row.
    d->info.out_color_space = inks ? JCS_CMYK : JCS_EXT_BGR;
    jpeg_start_decompress(&d->info);
    if (originalSize) *originalSize = CSize(d->info.image_width, d->info.image_height);
    const int width = static_cast<int>(d->info.output_width);
    const int height = static_cast<int>(d->info.output_height);
    d->dib = DibSection::create(width, height, 3);
    if (!d->dib) std::longjmp(d->errors.jump, 1);
    if (inks) d->inks.resize(static_cast<std::size_t>(width) * 4);
    const int stride = d->dib->getStride();
    while (d->info.output_scanline < d->info.output_height) {
        unsigned char* row =
            d->dib->getBits() + static_cast<std::ptrdiff_t>(d->info.output_scanline) * stride;
        JSAMPROW target = inks ? d->inks.data() : row;
        if (jpeg_read_scanlines(&d->info, &target, 1) != 1) break;
        if (!inks) continue;
        const unsigned char* ink = d->inks.data();
        for (int x = 0; x < width; ++x, ink += 4, row += 3) {
            const unsigned k = ink[3];
            row[0] = static_cast<unsigned char>((ink[2] * k + 1) / 256);
            row[1] = static_cast<unsigned char>((ink[1] * k + 1) / 256);
            row[2] = static_cast<unsigned char>((ink[0] * k + 1) / 256);
        }
    }
    jpeg_destroy_decompress(&d->info);
    return d->dib;
}

int IntelJpegCodec::write(Dib* dib, const char16_t* path, ImageQuality quality) {
    return writeCommon(dib, path, nullptr, 0, quality);
}

int IntelJpegCodec::writeToMemory(Dib* dib, void* buffer, int size, ImageQuality quality) {
    return writeCommon(dib, nullptr, buffer, size, quality);
}

int IntelJpegCodec::writeCommon(Dib* dib, const char16_t* path, void* buffer, int size,
                                ImageQuality quality) {
    if (!dib) return 0;
    int result;
    {
        JpegRecord record(path, buffer, size, quality);
        JPEG_CORE_PROPERTIES& p = record.props;
        const BITMAPINFOHEADER& header = *dib->getBitmapInfoHeader();
        if (header.biBitCount == 24) {
            p.DIBChannels = 3;
            p.DIBColor = IJL_BGR;
            p.JPGColor = IJL_YCBCR;
        } else if (header.biBitCount == 32) {
            p.DIBChannels = 4;
            p.DIBColor = IJL_RGBA_FPX;
            p.JPGColor = IJL_YCBCRA_FPX;
        } else {
            throw Exception(u"Unsupported bitcount");
        }
        p.DIBBytes = dib->getBits();
        p.DIBWidth = p.JPGWidth = header.biWidth;
        p.DIBHeight = p.JPGHeight = -header.biHeight;
        p.DIBPadBytes = Dib::strideFor(p.DIBWidth, p.DIBChannels) - p.DIBWidth * p.DIBChannels;
        p.JPGChannels = p.DIBChannels;
        p.JPGSubsampling = subsamplingFor(quality, p.DIBChannels);
        result = ijlWrite(&p, path ? IJL_JFILE_WRITEWHOLEIMAGE : IJL_JBUFF_WRITEWHOLEIMAGE);
        if (result == IJL_OK)
            result = p.JPGSizeBytes > 0 ? p.JPGSizeBytes : 1;
        else if (result == IJL_BUFFER_TOO_SMALL)
            result = 0;
        else if (result != IJL_EXCEPTION_DETECTED)
            throw Exception(u"Cannot write JPEG data to file\n");
    }
    if (result == IJL_EXCEPTION_DETECTED) return writeWithLibjpeg(dib, path, buffer, size, quality);
    return result;
}

std::unique_ptr<JpegRowWriter> IntelJpegCodec::startRowWrite(const char16_t* path, int width, int height,
                                                             ImageQuality quality, ReplacementFile::Kind kind) {
    JpegRowWriter::Settings settings;
    settings.width = width;
    settings.height = height;
    settings.blueFirst = false;
    settings.quality = encoderQuality(quality);
    settings.horizontalSampling = 2;
    settings.verticalSampling = subsamplingFor(quality, 3) == IJL_422 ? 1 : 2;
    auto writer = std::make_unique<JpegRowWriter>(CString(path).toUtf8(), kind);
    return writer->start(settings) ? std::move(writer) : nullptr;
}

int IntelJpegCodec::writeWithLibjpeg(Dib* dib, const char16_t* path, void* buffer, int size,
                                     ImageQuality quality) {
    const CSize dibSize = dib->getSize();
    const int channels = dib->getBytesPerPixel();
    if (dibSize.cx <= 0 || dibSize.cy <= 0 || dibSize.cx > JPEG_MAX_DIMENSION ||
        dibSize.cy > JPEG_MAX_DIMENSION || (channels != 1 && channels != 3 && channels != 4) ||
        (!path && (!buffer || size <= 0)))
        return 0;
    std::unique_ptr<LibjpegEncode> job(new (std::nothrow) LibjpegEncode());
    if (!job) return 0;
    LibjpegEncode* const e = job.get();
    e->row.resize(static_cast<std::size_t>(dibSize.cx) * 3);
    e->info.err = e->errors.install();
    if (setjmp(e->errors.jump)) {
        jpeg_destroy_compress(&e->info);
        std::free(e->grown);
        return 0;
    }
    jpeg_create_compress(&e->info);
    if (path) {
        jpeg_mem_dest(&e->info, &e->grown, &e->grownSize);
    } else {
        e->fixed.next_output_byte = static_cast<JOCTET*>(buffer);
        e->fixed.free_in_buffer = static_cast<std::size_t>(size);
        e->fixed.init_destination = [](j_compress_ptr) {};
        e->fixed.empty_output_buffer = [](j_compress_ptr c) -> boolean {
            std::longjmp(reinterpret_cast<JpegErrorJump*>(c->err)->jump, 1);
        };
        e->fixed.term_destination = [](j_compress_ptr) {};
        e->info.dest = &e->fixed;
    }
    e->info.image_width = static_cast<JDIMENSION>(dibSize.cx);
    e->info.image_height = static_cast<JDIMENSION>(dibSize.cy);
    e->info.input_components = 3;
    e->info.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&e->info);
    jpeg_set_quality(&e->info, encoderQuality(quality), TRUE);
    jpeg_set_colorspace(&e->info, JCS_YCbCr);
    if (quality == ImageQualityHigh) {
        e->info.comp_info[1].h_samp_factor = 2;
        e->info.comp_info[2].h_samp_factor = 2;
    }
    jpeg_start_compress(&e->info, TRUE);
    const int stride = dib->getStride();
    for (int y = 0; y < dibSize.cy; ++y) {
        // Each row as three bytes a pixel, blue first: grey spread, a fourth byte dropped.
        const unsigned char* in = dib->getBits() + static_cast<std::ptrdiff_t>(y) * stride;
        unsigned char* out = e->row.data();
        for (int x = 0; x < dibSize.cx; ++x, in += channels, out += 3) {
            out[0] = in[0];
            out[1] = channels == 1 ? in[0] : in[1];
            out[2] = channels == 1 ? in[0] : in[2];
        }
        JSAMPROW row = e->row.data();
        jpeg_write_scanlines(&e->info, &row, 1);
    }
    jpeg_finish_compress(&e->info);
    jpeg_destroy_compress(&e->info);
    if (!path) return size - static_cast<int>(e->fixed.free_in_buffer);

    ReplacementFile out(CString(path).toUtf8());
    const bool written = out.open() && out.write(e->grown, e->grownSize) && out.commit();
    std::free(e->grown);
    return written ? 1 : 0;
}

int IntelJpegCodec::writeKeepingMetadata(Dib* dib, const char16_t* path, const char16_t* sourcePath,
                                         ImageQuality quality) {
    using namespace JpegFormat;
    // Held from the read of the metadata to the rename: the source may be the file being replaced.
    RewriteLock lock;
    if (!lock.acquire(CString(path).toUtf8())) return 0;
    std::unique_ptr<JpegMarkerMap> source;
    try {
        source = std::make_unique<JpegMarkerMap>(sourcePath);
    } catch (const std::domain_error&) {
        return write(dib, path, quality);
    }
    const int app1Count = source->getSegmentCount(kApp1);
    if (app1Count == 0 && source->getSegmentCount(kApp13) == 0 && source->getSegmentCount(kComment) == 0)
        return write(dib, path, quality);
    if (!dib) return 0;

    // Encode to memory, with room for the headers of even the smallest picture; a picture that
    // does not fit (noise at high quality) gets a larger buffer.
    std::vector<unsigned char> encoded;
    long long capacity =
        static_cast<long long>(dib->getSize().cx) * dib->getSize().cy * dib->getBytesPerPixel() + 16384;
    int encodedSize = 0;
    while (encodedSize == 0 && capacity <= INT_MAX) {
        encoded.resize(static_cast<std::size_t>(capacity));
        encodedSize = writeToMemory(dib, encoded.data(), static_cast<int>(capacity), quality);
        capacity *= 2;
    }
    if (encodedSize <= 0) return 0;
    const JpegMarkerMap picture(encoded.data(), encodedSize);

    ReplacementFile out(CString(path).toUtf8());
    if (!out.open()) return 0;
    int last = 0;
    const auto put = [&](const JpegMarkerMap& map, const JpegMarkerMap::Segment& segment) {
        const unsigned char* bytes = map.getBytes(segment, true, &last);
        return out.write(bytes, static_cast<std::size_t>(last));
    };
    static const unsigned char kStart[2] = {0xFF, kStartOfImage};
    bool ok = out.write(kStart, sizeof kStart);
    // A file with EXIF begins with it (its JFIF segment is not carried over); one without keeps the
    // new picture's JFIF segment in front.
    const bool hasExif = source->getExifBlock() != nullptr;
    if (hasExif)
        ok = ok && put(*source, *source->getSegment(kApp1, 0));
    else if (const JpegMarkerMap::Segment* app0 = picture.getSegment(kApp0, 0))
        ok = ok && put(picture, *app0);
    for (int i = hasExif ? 1 : 0; i < app1Count; ++i) ok = ok && put(*source, *source->getSegment(kApp1, i));
    for (int i = 0; i < source->getSegmentCount(kApp13); ++i)
        ok = ok && put(*source, *source->getSegment(kApp13, i));
    for (int i = 0; i < source->getSegmentCount(kComment); ++i)
        ok = ok && put(*source, *source->getSegment(kComment, i));
    for (const JpegMarkerMap::Segment& segment : picture.getSegments()) {
        if (segment.marker == kApp0 || segment.marker == kApp1 || segment.marker == kApp13 ||
            segment.marker == kComment)
            continue;
        ok = ok && put(picture, segment);
    }
    if (!ok || !out.commit()) return 0;
    return last > 0 ? last : 1;
}

std::vector<unsigned char> IntelJpegCodec::readEmbeddedThumbnailBytes(const char16_t* path) {
    try {
        const JpegMarkerMap map(path, JpegMarkerMap::kSegments);
        const JpegMarkerMap::Segment* segment = findExifSegment(map);
        if (!segment) return {};
        const std::unique_ptr<ExifThumbnail> exif =
            ExifThumbnail::load(map.getData() + segment->offset, segment->length);
        if (!exif || exif->getThumbnailSize() <= 0) return {};
        return std::vector<unsigned char>(exif->getThumbnail(),
                                          exif->getThumbnail() + exif->getThumbnailSize());
    } catch (...) {
        return {};
    }
}

Dib* IntelJpegCodec::readEmbeddedThumbnail(const char16_t* path) {
    if (!hasEmbeddedThumbnail()) return nullptr;
    const std::vector<unsigned char> thumbnail = readEmbeddedThumbnailBytes(path);
    if (thumbnail.empty()) return nullptr;
    try {
        return readFromMemory(thumbnail.data(), static_cast<int>(thumbnail.size()), nullptr, 0, 0);
    } catch (...) {
        return nullptr;
    }
}

int IntelJpegCodec::copyEmbeddedThumbnail(const char16_t* source, const char16_t* destination, int maxWidth,
                                          int maxHeight, CSize* size) {
    if (!hasEmbeddedThumbnail()) return 0;
    const std::vector<unsigned char> thumbnail = readEmbeddedThumbnailBytes(source);
    if (thumbnail.empty()) return 0;
    CSize stored(0, 0);
    try {
        getInfoFromMemory(thumbnail.data(), static_cast<int>(thumbnail.size()), &stored, nullptr);
    } catch (...) {
        return 0;
    }
    if (stored.cx > maxWidth || stored.cy > maxHeight) return 0;
    ReplacementFile out(CString(destination).toUtf8(), ReplacementFile::Kind::kDerived);
    if (!out.open() || !out.write(thumbnail.data(), thumbnail.size()) || !out.commit()) return -1;
    if (size) *size = stored;
    return 1;
}

void IntelJpegCodec::writeEmbeddedThumbnail(const char16_t* path, Dib* thumbnail) {
    using namespace JpegFormat;
    // The new version is begun (and the file locked) before the file is read.
    ReplacementFile out(CString(path).toUtf8());
    if (!out.open()) return;
    keepTimes(out);
    std::unique_ptr<JpegMarkerMap> map;
    try {
        map = std::make_unique<JpegMarkerMap>(path);
    } catch (const std::domain_error&) {
        return;
    }
    const JpegMarkerMap::Segment* segment = findExifSegment(*map);
    if (!segment) return;
    const std::unique_ptr<ExifThumbnail> exif =
        ExifThumbnail::load(map->getData() + segment->offset, segment->length);
    if (!exif) return;

    std::vector<unsigned char> jpeg;
    if (thumbnail) {
        jpeg.resize(static_cast<std::size_t>(thumbnail->getBitsSize()) + 40);
        OwnedPtr<IntelJpegCodec> encoder = IntelJpegCodec::create();
        if (!encoder) return;
        const int written =
            encoder->writeToMemory(thumbnail, jpeg.data(), static_cast<int>(jpeg.size()), ImageQualityNormal);
        jpeg.resize(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    if (!exif->setThumbnail(jpeg.data(), static_cast<int>(jpeg.size()))) return;
    const std::vector<unsigned char> block = exif->save();
    if (block.empty() || block.size() > static_cast<std::size_t>(kMaxSegmentContents)) return;

    // The file with its EXIF segment exchanged: everything before and after it stays as it was.
    const int length = static_cast<int>(block.size()) + 2;
    const unsigned char header[4] = {0xFF, kApp1, static_cast<unsigned char>(length >> 8),
                                     static_cast<unsigned char>(length & 0xFF)};
    const unsigned char* data = map->getData();
    const int before = segment->offset - kSegmentHeaderSize;
    const int after = segment->offset + segment->length;
    if (out.write(data, static_cast<std::size_t>(before)) && out.write(header, sizeof header) &&
        out.write(block.data(), block.size()) &&
        out.write(data + after, static_cast<std::size_t>(map->getSize() - after)))
        out.commit();
}

bool IntelJpegCodec::canApplyToFile(EditingOp* op) {
    return op && op->getOpType() == 2;
}

bool IntelJpegCodec::isLosslessOnFile(EditingOp* op, Dib* dib) {
    if (!canApplyToFile(op) || !dib) return false;
    const CSize size = dib->getSize();
    return size.cx % 8 == 0 && size.cy % 8 == 0;
}

bool IntelJpegCodec::rotateFile(const char16_t* path, RotateOp* op) {
    if (!op) return false;
    const int angle = op->getAngle();
    if (angle == 0) return true;
    if (angle != 90 && angle != 180 && angle != 270) throw Error(u"Angle not supported");
    // The new version is begun, and the file locked, before the file is read: a rotation by another
    // writer in the meantime is turned further, not lost.
    const std::string target = CString(path).toUtf8();
    ReplacementFile out(target);
    if (!out.open()) throw Exception(u"Cannot open destination file");
    FileContents source;
    if (!source.open(target) || source.size() == 0) throw Exception(u"Cannot read src file");
    keepTimes(out);
    const JpegWriter write = [&out](const unsigned char* bytes, std::size_t count) {
        return out.write(bytes, count);
    };
    return rotateJpeg(source.data(), static_cast<std::size_t>(source.size()), angle, write) && out.commit();
}

}  // namespace Orvanta

#include "orvanta/platform/JpegLibrary.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/JpegErrorJump.h"
#include "orvanta/platform/JpegRowWriter.h"
#include "orvanta/platform/JpegStrips.h"
#include "orvanta/platform/ReplacementFile.h"

namespace Orvanta::Platform {

// What a record holds between calls: the file's bytes, so that reading the header and then the
// picture reads it once. The header is read from the file's beginning alone.
struct JpegEngine {
    FileContents file;
    std::string path;
};

namespace {

// Enough for the segments before the scan of nearly every photograph (EXIF with its thumbnail, an
// ICC profile, XMP); a header that runs on is read again from the whole file.
constexpr std::size_t kHeaderPrefix = 128 * 1024;

bool isFileMode(int mode) {
    return mode % 2 == 0;
}

int reductionOf(int mode) {
    switch (mode) {
        case IJL_JFILE_READWHOLEIMAGE:
        case IJL_JBUFF_READWHOLEIMAGE:
            return 1;
        case IJL_JFILE_READONEHALF:
        case IJL_JBUFF_READONEHALF:
            return 2;
        case IJL_JFILE_READONEQUARTER:
        case IJL_JBUFF_READONEQUARTER:
            return 4;
        case IJL_JFILE_READONEEIGHTH:
        case IJL_JBUFF_READONEEIGHTH:
            return 8;
        default:
            return 0;
    }
}

// The compressed bytes a read works on: the file (its beginning alone for the header) or the
// caller's block.
int sourceOf(JPEG_CORE_PROPERTIES* props, int mode, bool whole, const unsigned char** data, int* size) {
    if (!isFileMode(mode)) {
        if (!props->JPGBytes || props->JPGSizeBytes <= 0) return IJL_NULL_POINTER;
        *data = props->JPGBytes;
        *size = props->JPGSizeBytes;
        return IJL_OK;
    }
    if (!props->JPGFile) return IJL_NULL_POINTER;
    JpegEngine& engine = *props->engine;
    const std::size_t limit = whole ? FileContents::kWhole : kHeaderPrefix;
    if (!engine.file.isOpen() || engine.path != props->JPGFile) {
        engine.path.clear();
        if (!engine.file.open(props->JPGFile, limit)) return IJL_FILE_ERROR;
        engine.path = props->JPGFile;
    } else if (!engine.file.extend(limit)) {
        return IJL_FILE_ERROR;
    }
    if (engine.file.size() == 0) return IJL_BAD_DATA;
    *data = engine.file.data();
    *size = engine.file.size();
    return IJL_OK;
}

// cutShort: set when the header ran past the end of the bytes given.
int readParams(JPEG_CORE_PROPERTIES* props, const unsigned char* data, int size, bool* cutShort) {
    JpegErrorJump errors;
    jpeg_decompress_struct info;
    info.err = errors.install();
    if (setjmp(errors.jump)) {
        *cutShort = errors.cutShort;
        jpeg_destroy_decompress(&info);
        return IJL_BAD_DATA;
    }
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, data, static_cast<unsigned long>(size));
    jpeg_read_header(&info, TRUE);
    *cutShort = errors.cutShort;
    props->JPGWidth = static_cast<int>(info.image_width);
    props->JPGHeight = static_cast<int>(info.image_height);
    props->JPGChannels = info.num_components;
    jpeg_destroy_decompress(&info);
    return IJL_OK;
}

// Checks the output form the record asks for against the picture, and chooses libjpeg's output.
int outputSpace(const JPEG_CORE_PROPERTIES* props, const jpeg_decompress_struct& info, J_COLOR_SPACE* space) {
    const bool fourComponents = info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK;
    if (props->DIBColor == IJL_BGR && props->DIBChannels == 3 && !fourComponents &&
        (info.num_components == 1 || info.num_components == 3)) {
        *space = JCS_EXT_BGR;
        return IJL_OK;
    }
    if (props->DIBColor == IJL_RGBA_FPX && props->DIBChannels == 4 && fourComponents) {
        *space = JCS_CMYK;
        return IJL_OK;
    }
    return IJL_INVALID_JPEG_PROPERTIES;
}

// The decode proper, run under the caller's long jump: nothing here outlives a jump back.
int decodeRows(JPEG_CORE_PROPERTIES* props, jpeg_decompress_struct& info, JSAMPROW* rows, int reduction) {
    jpeg_read_header(&info, TRUE);
    J_COLOR_SPACE space;
    const int checked = outputSpace(props, info, &space);
    if (checked != IJL_OK) return checked;
    info.out_color_space = space;
    info.scale_num = 1;
    info.scale_denom = static_cast<unsigned int>(reduction);
    jpeg_calc_output_dimensions(&info);
    if (static_cast<int>(info.output_width) != props->DIBWidth ||
        static_cast<int>(info.output_height) != props->DIBHeight)
        return IJL_INVALID_JPEG_PROPERTIES;
    jpeg_start_decompress(&info);
    while (info.output_scanline < info.output_height) {
        const JDIMENSION line = info.output_scanline;
        if (jpeg_read_scanlines(&info, &rows[line], info.output_height - line) == 0) break;
    }
    if (space == JCS_CMYK) {
        // libjpeg gives cyan, magenta, yellow, black; the blue-first order puts yellow first.
        for (int y = 0; y < props->DIBHeight; ++y) {
            unsigned char* p = rows[y];
            for (int x = 0; x < props->DIBWidth; ++x, p += 4) std::swap(p[0], p[2]);
        }
    }
    // A picture cut short has been delivered as far as it goes; the rest of its data is not needed,
    // so the decoder is not asked to finish.
    return IJL_OK;
}

int readImage(JPEG_CORE_PROPERTIES* props, const unsigned char* data, int size, int reduction) {
    if (!props->DIBBytes || props->DIBWidth <= 0 || props->DIBHeight <= 0 || props->DIBPadBytes < 0)
        return IJL_INVALID_JPEG_PROPERTIES;
    const long long rowBytes =
        static_cast<long long>(props->DIBWidth) * props->DIBChannels + props->DIBPadBytes;
    if (rowBytes > INT_MAX) return IJL_INVALID_JPEG_PROPERTIES;
    std::vector<JSAMPROW> rows;
    try {
        rows.resize(static_cast<std::size_t>(props->DIBHeight));
    } catch (const std::bad_alloc&) {
        return IJL_MEMORY_ERROR;
    }
    for (int y = 0; y < props->DIBHeight; ++y) rows[y] = props->DIBBytes + rowBytes * y;

    JpegErrorJump errors;
    jpeg_decompress_struct info;
    info.err = errors.install();
    if (setjmp(errors.jump)) {
        jpeg_destroy_decompress(&info);
        return IJL_BAD_DATA;
    }
    jpeg_create_decompress(&info);
    errors.watchScans(&info);
    jpeg_mem_src(&info, data, static_cast<unsigned long>(size));
    const int result = decodeRows(props, info, rows.data(), reduction);
    jpeg_destroy_decompress(&info);
    return result;
}

// A libjpeg destination over the caller's fixed block: running out of room is the one failure.
struct FixedDestination {
    jpeg_destination_mgr manager;
    bool overflow = false;
};

JpegRowWriter::Settings settingsOf(const JPEG_CORE_PROPERTIES* props) {
    JpegRowWriter::Settings settings;
    settings.width = props->JPGWidth;
    settings.height = props->JPGHeight;
    settings.channels = props->DIBChannels;
    settings.quality = props->jquality;
    switch (props->JPGSubsampling) {
        case IJL_411:
        case IJL_4114:
            settings.horizontalSampling = settings.verticalSampling = 2;
            break;
        case IJL_422:
        case IJL_4224:
            settings.horizontalSampling = 2;
            break;
        default:
            break;
    }
    return settings;
}

// The rows of the record's picture from `first` on, at most 16 of them.
int rowsOf(const JPEG_CORE_PROPERTIES* props, int first, const unsigned char** rows) {
    const int stride = props->DIBWidth * props->DIBChannels + props->DIBPadBytes;
    int count = 0;
    for (; count < 16 && first + count < props->JPGHeight; ++count)
        rows[count] = props->DIBBytes + static_cast<std::ptrdiff_t>(stride) * (first + count);
    return count;
}

// A large picture into the block in strips, as a file of it is written; the same bytes.
int encodeStripsToBlock(JPEG_CORE_PROPERTIES* props, const JpegRowWriter::Settings& settings) {
    std::size_t used = 0;
    const std::size_t room = static_cast<std::size_t>(props->JPGSizeBytes);
    bool overflow = false;
    JpegStrips strips(settings, [&](const unsigned char* bytes, std::size_t count) {
        if (count > room - used) {
            overflow = true;
            return false;
        }
        std::memcpy(props->JPGBytes + used, bytes, count);
        used += count;
        return true;
    });
    const unsigned char* rows[16];
    bool ok = true;
    for (int first = 0; ok && first < props->JPGHeight;) {
        const int count = rowsOf(props, first, rows);
        ok = strips.add(rows, count);
        first += count;
    }
    if (!ok || !strips.finish()) return overflow ? IJL_BUFFER_TOO_SMALL : IJL_EXCEPTION_DETECTED;
    props->JPGSizeBytes = static_cast<int>(used);
    return IJL_OK;
}

int encodeToBlock(JPEG_CORE_PROPERTIES* props) {
    if (JpegStrips::suits(settingsOf(props))) return encodeStripsToBlock(props, settingsOf(props));
    FixedDestination fixed;
    JpegErrorJump errors;
    jpeg_compress_struct info;
    info.err = errors.install();
    if (setjmp(errors.jump)) {
        jpeg_destroy_compress(&info);
        return fixed.overflow ? IJL_BUFFER_TOO_SMALL : IJL_EXCEPTION_DETECTED;
    }
    jpeg_create_compress(&info);
    fixed.manager.next_output_byte = props->JPGBytes;
    fixed.manager.free_in_buffer = static_cast<std::size_t>(props->JPGSizeBytes);
    fixed.manager.init_destination = [](j_compress_ptr) {};
    fixed.manager.empty_output_buffer = [](j_compress_ptr c) -> boolean {
        reinterpret_cast<FixedDestination*>(c->dest)->overflow = true;
        std::longjmp(reinterpret_cast<JpegErrorJump*>(c->err)->jump, 1);
    };
    fixed.manager.term_destination = [](j_compress_ptr) {};
    info.dest = &fixed.manager;
    JpegRowWriter::configure(&info, settingsOf(props));
    jpeg_start_compress(&info, TRUE);
    const unsigned char* rows[16];
    while (info.next_scanline < info.image_height) {
        const int count = rowsOf(props, static_cast<int>(info.next_scanline), rows);
        jpeg_write_scanlines(&info, const_cast<JSAMPARRAY>(rows), static_cast<JDIMENSION>(count));
    }
    jpeg_finish_compress(&info);
    props->JPGSizeBytes -= static_cast<int>(fixed.manager.free_in_buffer);
    jpeg_destroy_compress(&info);
    return IJL_OK;
}

// Straight into the file as the encoder makes it; the file is replaced only once it is whole.
int encodeToFile(JPEG_CORE_PROPERTIES* props) {
    JpegRowWriter writer(props->JPGFile, ReplacementFile::Kind::kOwned);
    const auto failed = [&] { return writer.fileFailed() ? IJL_FILE_ERROR : IJL_EXCEPTION_DETECTED; };
    if (!writer.start(settingsOf(props))) return failed();
    const unsigned char* rows[16];
    for (int first = 0; first < props->JPGHeight;) {
        const int count = rowsOf(props, first, rows);
        if (!writer.write(rows, count)) return failed();
        first += count;
    }
    if (!writer.finish()) return failed();
    props->JPGSizeBytes = static_cast<int>(std::min<long long>(writer.written(), INT_MAX));
    return IJL_OK;
}

int writeImage(JPEG_CORE_PROPERTIES* props, int mode) {
    if (!props->DIBBytes || props->DIBWidth <= 0 || props->DIBHeight <= 0 || props->DIBPadBytes < 0 ||
        props->JPGWidth != props->DIBWidth || props->JPGHeight != props->DIBHeight ||
        props->JPGWidth > JPEG_MAX_DIMENSION || props->JPGHeight > JPEG_MAX_DIMENSION)
        return IJL_INVALID_JPEG_PROPERTIES;
    if (!((props->DIBColor == IJL_BGR && props->DIBChannels == 3) ||
          (props->DIBColor == IJL_RGBA_FPX && props->DIBChannels == 4)))
        return IJL_INVALID_JPEG_PROPERTIES;
    if (isFileMode(mode)) return props->JPGFile ? encodeToFile(props) : IJL_NULL_POINTER;
    if (!props->JPGBytes || props->JPGSizeBytes <= 0) return IJL_NULL_POINTER;
    return encodeToBlock(props);
}

}  // namespace

int ijlInit(JPEG_CORE_PROPERTIES* props) {
    if (!props) return IJL_NULL_POINTER;
    props->engine = new (std::nothrow) JpegEngine();
    return props->engine ? IJL_OK : IJL_MEMORY_ERROR;
}

int ijlFree(JPEG_CORE_PROPERTIES* props) {
    if (!props) return IJL_NULL_POINTER;
    delete props->engine;
    props->engine = nullptr;
    return IJL_OK;
}

int ijlRead(JPEG_CORE_PROPERTIES* props, int mode) {
    if (!props || !props->engine) return IJL_NULL_POINTER;
    const int reduction = reductionOf(mode);
    if (mode != IJL_JFILE_READPARAMS && mode != IJL_JBUFF_READPARAMS && reduction == 0)
        return IJL_INVALID_JPEG_PROPERTIES;
    const unsigned char* data = nullptr;
    int size = 0;
    const int found = sourceOf(props, mode, reduction != 0, &data, &size);
    if (found != IJL_OK) return found;
    if (reduction != 0) return readImage(props, data, size, reduction);
    bool cutShort = false;
    const int result = readParams(props, data, size, &cutShort);
    if (!cutShort || !isFileMode(mode) || props->engine->file.isComplete()) return result;
    // The header goes on past the beginning that was read.
    if (sourceOf(props, mode, true, &data, &size) != IJL_OK) return IJL_FILE_ERROR;
    return readParams(props, data, size, &cutShort);
}

int ijlWrite(JPEG_CORE_PROPERTIES* props, int mode) {
    if (!props || !props->engine) return IJL_NULL_POINTER;
    if (mode != IJL_JFILE_WRITEWHOLEIMAGE && mode != IJL_JBUFF_WRITEWHOLEIMAGE)
        return IJL_INVALID_JPEG_PROPERTIES;
    return writeImage(props, mode);
}

}  // namespace Orvanta::Platform

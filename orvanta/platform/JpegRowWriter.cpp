#include "orvanta/platform/JpegRowWriter.h"

#include <csetjmp>

#include "orvanta/platform/JpegStrips.h"

namespace Orvanta::Platform {

namespace {

// The compressed bytes gathered before each write to the file.
constexpr std::size_t kBlockSize = 256 * 1024;

}  // namespace

void JpegRowWriter::configure(jpeg_compress_struct* info, const Settings& settings) {
    info->image_width = static_cast<JDIMENSION>(settings.width);
    info->image_height = static_cast<JDIMENSION>(settings.height);
    info->input_components = settings.channels;
    if (settings.channels == 4)
        info->in_color_space = settings.blueFirst ? JCS_EXT_BGRX : JCS_EXT_RGBX;
    else
        info->in_color_space = settings.blueFirst ? JCS_EXT_BGR : JCS_EXT_RGB;
    jpeg_set_defaults(info);
    jpeg_set_quality(info, settings.quality, TRUE);
    jpeg_set_colorspace(info, JCS_YCbCr);
    info->comp_info[0].h_samp_factor = settings.horizontalSampling;
    info->comp_info[0].v_samp_factor = settings.verticalSampling;
}

JpegRowWriter::JpegRowWriter(std::string path, ReplacementFile::Kind kind) : mFile(std::move(path), kind) {
    mInfo.err = mErrors.install();
}

JpegRowWriter::~JpegRowWriter() {
    if (mCreated) jpeg_destroy_compress(&mInfo);
}

bool JpegRowWriter::writeFile(const unsigned char* bytes, std::size_t count) {
    if (!mFile.write(bytes, count)) {
        mFileFailed = true;
        return false;
    }
    mWritten += static_cast<long long>(count);
    return true;
}

bool JpegRowWriter::flush(std::size_t count) {
    if (!writeFile(mBlock.data(), count)) return false;
    mDestination.manager.next_output_byte = mBlock.data();
    mDestination.manager.free_in_buffer = mBlock.size();
    return true;
}

bool JpegRowWriter::end(bool ok) {
    if (!ok) {
        mFailed = true;
        mFile.discard();
    }
    return ok;
}

bool JpegRowWriter::start(const Settings& settings) {
    if (mCreated || mStrips || mFailed || settings.width <= 0 || settings.height <= 0 ||
        settings.width > JPEG_MAX_DIMENSION || settings.height > JPEG_MAX_DIMENSION ||
        (settings.channels != 3 && settings.channels != 4))
        return end(false);
    if (!mFile.open()) {
        mFileFailed = true;
        return end(false);
    }
    mHeight = settings.height;
    if (JpegStrips::suits(settings)) {
        mStrips = std::make_unique<JpegStrips>(
            settings,
            [this](const unsigned char* bytes, std::size_t count) { return writeFile(bytes, count); });
        return true;
    }
    mBlock.resize(kBlockSize);
    if (setjmp(mErrors.jump)) return end(false);
    jpeg_create_compress(&mInfo);
    mCreated = true;
    mDestination.owner = this;
    mDestination.manager.next_output_byte = mBlock.data();
    mDestination.manager.free_in_buffer = mBlock.size();
    mDestination.manager.init_destination = [](j_compress_ptr) {};
    // A write that fails stops the encoder where it is, through its error jump.
    mDestination.manager.empty_output_buffer = [](j_compress_ptr c) -> boolean {
        auto* self = reinterpret_cast<Destination*>(c->dest)->owner;
        if (!self->flush(self->mBlock.size())) std::longjmp(self->mErrors.jump, 1);
        return TRUE;
    };
    mDestination.manager.term_destination = [](j_compress_ptr c) {
        auto* self = reinterpret_cast<Destination*>(c->dest)->owner;
        if (!self->flush(self->mBlock.size() - c->dest->free_in_buffer)) std::longjmp(self->mErrors.jump, 1);
    };
    mInfo.dest = &mDestination.manager;
    configure(&mInfo, settings);
    jpeg_start_compress(&mInfo, TRUE);
    return true;
}

bool JpegRowWriter::write(const unsigned char* const* rows, int count) {
    if (mStrips) {
        if (mFailed || count < 0 || mRows + count > mHeight) return end(false);
        mRows += count;
        return end(mStrips->add(rows, count));
    }
    if (!mCreated || mFailed || count < 0 ||
        mInfo.next_scanline + static_cast<JDIMENSION>(count) > mInfo.image_height)
        return end(false);
    if (setjmp(mErrors.jump)) return end(false);
    jpeg_write_scanlines(&mInfo, const_cast<JSAMPARRAY>(rows), static_cast<JDIMENSION>(count));
    return true;
}

bool JpegRowWriter::finish() {
    if (mStrips) {
        if (mFailed || mRows != mHeight || !mStrips->finish()) return end(false);
        mFileFailed = !mFile.commit();
        return end(!mFileFailed);
    }
    if (!mCreated || mFailed || mInfo.next_scanline != mInfo.image_height) return end(false);
    if (setjmp(mErrors.jump)) return end(false);
    jpeg_finish_compress(&mInfo);
    mFileFailed = !mFile.commit();
    return end(!mFileFailed);
}

}  // namespace Orvanta::Platform

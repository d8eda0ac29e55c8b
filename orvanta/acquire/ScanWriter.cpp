#include "orvanta/acquire/ScanWriter.h"

#include <algorithm>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"

namespace Orvanta {

namespace {

// The rows handed to the encoder at once: its own band is 8 or 16 rows.
constexpr int kBand = 32;

}  // namespace

ScanWriter::ScanWriter(PictureCallback onPicture) : mOnPicture(std::move(onPicture)) {}

CString ScanWriter::makePath() {
    const CString folder = FilePath::getFolder(FilePath::getTempFilePath(nullptr));
    return FilePath::makePath(folder, u"twainImage.jpg", true);
}

void ScanWriter::beginFrame(const Platform::SaneHelper::Frame& sent) {
    const ScanFrames::Frame frame{sent.format, sent.bytesPerLine, sent.pixelsPerLine, sent.lines, sent.depth, {}};
    // The row writer is the JPEG codec's own: another codec for "jpg" gets the whole picture.
    if (mFrames.empty() && !mStreaming && sent.last && ScanFrames::isSinglePicture(frame) &&
        dynamic_cast<IntelJpegCodec*>(CodecManager::getCodec(u"jpg"))) {
        mStreaming = true;
        mStreamFrame = frame;
        mStreamRows = 0;
        mStreamPath = makePath();
        // A temporary file, copied into place later: the copy is what must reach the device.
        mStream = IntelJpegCodec::startRowWrite(mStreamPath, frame.pixelsPerLine, frame.lines, ImageQualityHigh,
                                                Platform::ReplacementFile::Kind::kDerived);
        mFailed = !mStream;
        return;
    }
    mFrames.push_back(frame);
    mBytes.emplace_back();
}

void ScanWriter::addRows(const unsigned char* rows, int count) {
    if (!mStreaming) {
        if (!mFrames.empty())
            mBytes.back().append(reinterpret_cast<const char*>(rows),
                                 static_cast<std::size_t>(count) * mFrames.back().bytesPerLine);
        return;
    }
    mStreamRows += count;
    if (mFailed || mStreamRows > mStreamFrame.lines) return;
    const int width = mStreamFrame.pixelsPerLine;
    const std::size_t spread = static_cast<std::size_t>(width) * 3;
    const unsigned char* band[kBand];
    if (mStreamFrame.format == 0) mGreyRows.resize(spread * kBand);
    for (int first = 0; first < count && !mFailed; first += kBand) {
        const int n = std::min(kBand, count - first);
        for (int i = 0; i < n; ++i) {
            const unsigned char* row = rows + static_cast<std::size_t>(first + i) * mStreamFrame.bytesPerLine;
            if (mStreamFrame.format == 0) {
                // Grey rows go to the encoder as three equal samples a pixel.
                ScanFrames::spreadGrey(row, width, mStreamFrame.depth, mGreyRows.data() + spread * i);
                row = mGreyRows.data() + spread * i;
            }
            band[i] = row;
        }
        mFailed = !mStream->write(band, n);
    }
}

void ScanWriter::endFrame(int lines) {
    if (mStreaming) return;
    if (!mFrames.empty() && mFrames.back().lines < 0) mFrames.back().lines = lines;
}

bool ScanWriter::endImage() {
    CString path;
    if (!finishPicture(&path)) {
        mWriteFailed = true;
        return false;
    }
    return path.isEmpty() || mOnPicture(path);
}

bool ScanWriter::finishPicture(CString* path) {
    if (mStreaming) {
        mStreaming = false;
        std::unique_ptr<Platform::JpegRowWriter> stream = std::move(mStream);
        // Rows other than the frame promised: a picture not taken, like those ScanFrames turns down.
        if (!mFailed && mStreamRows != mStreamFrame.lines) return true;
        if (mFailed || !stream->finish()) return false;
        *path = mStreamPath;
        return true;
    }
    for (std::size_t i = 0; i < mFrames.size(); ++i) mFrames[i].bytes = mBytes[i];
    OwnedPtr<Dib> dib = ScanFrames::toDib(mFrames);
    mFrames.clear();
    mBytes.clear();
    if (!dib) return true;  // a depth we do not take: the next picture may do
    auto* codec = dynamic_cast<ImageCodec*>(CodecManager::getCodec(u"jpg"));
    const CString written = makePath();
    if (!codec || codec->write(dib, written, ImageQualityHigh) <= 0) return false;
    *path = written;
    return true;
}

}  // namespace Orvanta

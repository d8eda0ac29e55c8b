#pragma once
// ScanWriter: writes each picture a scanner sends as a new JPEG file in the temporary folder, named
// after "twainImage.jpg" (never over another file), at the codec's high quality.
//
// Contract: a SaneHelper sink. A picture of one frame whose length is known (grey, 1-bit or RGB) is
// encoded row by row while it is scanned, by the JPEG codec's row writer: the file is byte for byte
// what the codec's write makes of the picture as a Dib, and the picture is never held whole. Other
// pictures (the three frames of a three-pass scanner, a hand scanner's frame of unknown length) are
// gathered and then turned into a Dib by ScanFrames. After each picture the callback gets its file's
// path and answers whether to scan another; a picture ScanFrames does not take (16 bits a sample) is
// passed over, and one that cannot be written stops the scan (the callback is not called). A
// picture cut short leaves no file.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "orvanta/acquire/ScanFrames.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/JpegRowWriter.h"
#include "orvanta/platform/SaneHelper.h"

namespace Orvanta {

class ScanWriter : public Platform::SaneHelper::Sink {
public:
    using PictureCallback = std::function<bool(const CString& path)>;
    explicit ScanWriter(PictureCallback onPicture);

    void beginFrame(const Platform::SaneHelper::Frame& frame) override;
    void addRows(const unsigned char* rows, int count) override;
    void endFrame(int lines) override;
    bool endImage() override;
    // Whether a picture could not be written (a full disk), which ended the scan.
    bool failed() const { return mWriteFailed; }

private:
    // A new path in the temporary folder for a scanned picture.
    static CString makePath();
    bool finishPicture(CString* path);

    PictureCallback mOnPicture;
    // The picture being encoded as it comes, its path and rows so far, and a spread grey row.
    bool mStreaming = false;
    std::unique_ptr<Platform::JpegRowWriter> mStream;
    CString mStreamPath;
    ScanFrames::Frame mStreamFrame;
    int mStreamRows = 0;
    std::vector<unsigned char> mGreyRows;
    bool mFailed = false;
    bool mWriteFailed = false;
    // The frames of a picture gathered whole, and their bytes.
    std::vector<ScanFrames::Frame> mFrames;
    std::vector<std::string> mBytes;
};

}  // namespace Orvanta

#pragma once
// SaneHelper: scanners through SANE, every call of which runs in a helper process of ours
// (orvanta-sane-helper), so that a driver that crashes or hangs takes down the helper, never the
// host.
//
// Contract: each operation starts a helper (posix_spawn), talks to it over a socket pair and waits
// for it to end. The helper sends text lines; a scanned frame travels as a sealed memory file of raw
// SANE bytes (memfd, passed along the socket), which the host maps for the time of onImage: nothing
// is written to disk, and a helper that dies in the middle of a frame leaves nothing behind, nor
// can it shrink a frame under the host's mapping. An operation answers kCrashed when the helper
// ended without its closing line (a signal, a sanitizer's report, an exit in the middle), sent a
// frame that cannot be mapped, or sent nothing for the hang timeout, after which it is killed by its
// pid.
// listDevices() gives SANE's devices. scan() sets each option given as NAME=VALUE, then scans
// pictures: after each whole picture (one frame, or the three of a three-pass scanner) onImage is
// called with its frames and answers whether to scan another; the helper goes on while the device
// has more documents (a sheet feeder), else ends after one. status is SANE's status of the end.
// The helper is found by $ORVANTA_SANE_HELPER, else beside the library's own folder (../bin,
// ../libexec/orvanta).

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta::Platform {

class SaneHelper {
public:
    enum Outcome { kDone, kFailed, kCrashed };
    // SANE's frame formats.
    enum Format { kGray = 0, kRgb = 1, kRed = 2, kGreen = 3, kBlue = 4 };
    struct Device {
        std::string name, vendor, model, type;
    };
    struct Frame {
        std::string_view bytes;  // mapped until onImage returns
        int format = kGray;
        bool last = true;
        int bytesPerLine = 0, pixelsPerLine = 0, lines = 0, depth = 8;
    };
    using ImageSink = std::function<bool(const std::vector<Frame>& frames)>;

    static Outcome listDevices(std::vector<Device>* devices);
    static Outcome scan(const std::string& device, const std::vector<std::string>& options,
                        const ImageSink& onImage, int* status);

    static std::string helperPath();
    // How long the helper may stay silent before it counts as hung; 0 restores the default (60 s).
    static void setHangTimeout(int milliseconds);
};

}  // namespace Orvanta::Platform

#pragma once
// SaneHelper: scanners through SANE, every call of which runs in a helper process of ours
// (orvanta-sane-helper), so that a driver that crashes or hangs takes down the helper, never the
// host.
//
// Contract: each operation starts a helper (posix_spawn), talks to it over a socket pair and waits
// for it to end. The helper sends text lines; a frame's rows come as the device delivers them,
// through a few slots of a memory file the helper shares with the host (sealed, so that it cannot
// shrink under the host's mapping), each given back once the sink has taken its rows: a picture
// can be written while it is scanned, and nothing of it is written to disk, copied through the
// socket or held whole in memory on the way. An operation answers kCrashed when the helper ended
// without its closing line (a signal, a sanitizer's report, an exit in the middle), sent what the
// protocol does not allow, or sent nothing for the hang timeout, after which it is killed by its pid.
// listDevices() gives SANE's devices. scan() sets each option given as NAME=VALUE, then scans
// pictures into the sink: each frame's parameters, its rows, its end; after each whole picture (one
// frame, or the three of a three-pass scanner) the sink answers whether to scan another. The helper
// goes on while the device has more documents (a sheet feeder), else ends after one. A frame that
// has not ended when scan() returns was cut short (a jam, a crash) and is the sink's to drop.
// status is SANE's status of the end.
// The helper is found by $ORVANTA_SANE_HELPER, else beside the library's own folder (../bin,
// ../libexec/orvanta).

#include <string>
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
        int format = kGray;
        bool last = true;
        // lines is -1 when the device does not know before the end (a hand scanner).
        int bytesPerLine = 0, pixelsPerLine = 0, lines = 0, depth = 8;
    };
    class Sink {
    public:
        virtual ~Sink() = default;
        virtual void beginFrame(const Frame& frame) = 0;
        // The frame's next rows, bytesPerLine bytes each, top row first; valid for the call.
        virtual void addRows(const unsigned char* rows, int count) = 0;
        // The frame came whole, with this many rows.
        virtual void endFrame(int lines) = 0;
        // A whole picture has come: whether to scan another.
        virtual bool endImage() = 0;
    };

    static Outcome listDevices(std::vector<Device>* devices);
    static Outcome scan(const std::string& device, const std::vector<std::string>& options,
                        Sink* sink, int* status);

    static std::string helperPath();
    // How long the helper may stay silent before it counts as hung; 0 restores the default (60 s).
    static void setHangTimeout(int milliseconds);
};

}  // namespace Orvanta::Platform

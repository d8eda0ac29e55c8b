// orvanta devices: the sources photos can be imported from, one a line: KIND, ID and NAME separated
// by tabs, cameras first, then scanners (when asked for), then removable and optical drives.

#include <cstdio>

#include "Commands.h"
#include "orvanta/acquire/AcquireChooser.h"
#include "orvanta/acquire/ImagingDeviceListener.h"
#include "orvanta/acquire/TwainEnumerator.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/foundation/OwnedPtr.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

// Keeps the whole list: the host prints every source rather than choosing one.
class ListingChooser : public AcquireChooser {
public:
    void handleSelection() override {}
};

class ScannerPrinter : public ImagingDeviceListener {
public:
    bool onDevice(int kind, const CString& name, const CString&, const CString& id) override {
        std::printf("%s\t%s\t%s\n", kind == kCamera ? "camera" : "scanner", id.toUtf8().c_str(),
                    name.toUtf8().c_str());
        return true;
    }
};

}  // namespace

int runDevices(const Arguments& arguments) {
    bool scanners = false;
    for (const std::string& a : arguments) {
        if (a == "--scanners") {
            scanners = true;
        } else {
            std::fprintf(stderr, "usage: orvanta devices [--scanners]\n");
            return 2;
        }
    }
    TwainSupport::setTwainMode(TwainSupport::kTwainNever);
    ListingChooser cameras;
    cameras.chooseDevice(kSourceImagingDevice);
    for (int i = 0; i < cameras.getTotalSources(); ++i)
        std::printf("camera\t%s\t%s\n", cameras.getSourceId(i).toUtf8().c_str(),
                    cameras.getSourceName(i).toUtf8().c_str());
    if (scanners) {
        ScannerPrinter printer;
        OwnedPtr<TwainEnumerator> enumerator = TwainEnumerator::create();
        enumerator->enumerate(&printer, -1);
        if (TwainSupport::hasTwainCrashed())
            std::fprintf(stderr, "orvanta devices: the scanner drivers crashed; no scanners listed\n");
    }
    ListingChooser drives;
    drives.chooseDevice(kSourceRemovableDrive | kSourceOpticalDrive);
    // The list is plain: the kind column tells the drives apart, so the names carry no suffix.
    for (int i = 0; i < drives.getTotalSources(); ++i) {
        const CString id = drives.getSourceId(i);
        std::printf("%s\t%s\t%s\n",
                    drives.getSourceType(i) == kSourceRemovableDrive ? "removable" : "optical",
                    id.toUtf8().c_str(), id.toUtf8().c_str());
    }
    std::fflush(stdout);
    return 0;
}

}  // namespace OrvantaTool

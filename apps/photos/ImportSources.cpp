#include "apps/photos/ImportSources.h"

#include "orvanta/acquire/AcquireChooser.h"
#include "orvanta/acquire/TwainSupport.h"

using namespace Orvanta;

namespace OrvantaPhotos {

namespace {

// Keeps the whole list: the application shows every source rather than the chooser taking one.
class ListingChooser : public AcquireChooser {
public:
    void handleSelection() override {}
};

void addDevices(TwainSupport::TwainMode mode, ImportSource::Kind kind, std::vector<ImportSource>& sources) {
    TwainSupport::setTwainMode(mode);
    ListingChooser chooser;
    chooser.chooseDevice(kSourceImagingDevice);
    for (int i = 0; i < chooser.getTotalSources(); ++i)
        sources.push_back({kSourceImagingDevice, kind, chooser.getSourceId(i), chooser.getSourceName(i)});
}

}  // namespace

const char16_t* ImportSource::kindName() const {
    switch (kind) {
        case kCamera:
            return u"Camera";
        case kScanner:
            return u"Scanner";
        case kRemovable:
            return u"Memory card or USB drive";
        case kOptical:
            return u"CD or DVD";
    }
    return u"";
}

void ImportSource::use() const {
    if (type == kSourceImagingDevice)
        TwainSupport::setTwainMode(kind == kScanner ? TwainSupport::kTwainAlways : TwainSupport::kTwainNever);
}

std::vector<ImportSource> ImportSources::find(bool scanners) {
    std::vector<ImportSource> sources;
    const TwainSupport::TwainMode mode = TwainSupport::getTwainMode();
    addDevices(TwainSupport::kTwainNever, ImportSource::kCamera, sources);
    if (scanners) addDevices(TwainSupport::kTwainAlways, ImportSource::kScanner, sources);
    TwainSupport::setTwainMode(mode);
    ListingChooser drives;
    drives.chooseDevice(kSourceRemovableDrive | kSourceOpticalDrive);
    // The kind is a column of its own, so a drive is named by its path alone, without the suffix the
    // chooser gives a mixed list.
    for (int i = 0; i < drives.getTotalSources(); ++i) {
        const bool removable = drives.getSourceType(i) == kSourceRemovableDrive;
        sources.push_back({drives.getSourceType(i),
                           removable ? ImportSource::kRemovable : ImportSource::kOptical,
                           drives.getSourceId(i), drives.getSourceId(i)});
    }
    return sources;
}

}  // namespace OrvantaPhotos

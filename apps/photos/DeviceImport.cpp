#include "apps/photos/DeviceImport.h"

#include "apps/photos/ImportSources.h"
#include "apps/photos/ImportWizard.h"
#include "apps/photos/SourceDialog.h"
#include "orvanta/acquire/SourceType.h"

using namespace Orvanta;

namespace OrvantaPhotos {

DeviceImport::Outcome DeviceImport::run(HWND owner, AssetDb* catalogue,
                                        const std::vector<std::string>& extraCameras) {
    std::vector<ImportSource> sources;
    for (const std::string& id : extraCameras) {
        const CString camera = CString::fromUtf8(id);
        sources.push_back({kSourceImagingDevice, ImportSource::kCamera, camera, camera});
    }
    for (ImportSource& source : ImportSources::find(true)) sources.push_back(source);
    if (sources.empty())
        return {"No camera, scanner, memory card or CD was found. Connect one, turn it on, and try again.",
                ""};
    // One source is taken without asking, as AcquireChooser does.
    std::size_t chosen = 0;
    if (sources.size() > 1) {
        OwnedPtr<SourceDialog> dialog = SourceDialog::create(sources);
        if (dialog->showModal(0, 0, CString(u"Import from"), owner) != IDOK) return {};
        chosen = static_cast<std::size_t>(dialog->getChoice());
    }
    const ImportSource& source = sources[chosen];
    source.use();
    OwnedPtr<ImportWizard> wizard = ImportWizard::create(catalogue, source.name);
    wizard->setDevice(source.type, source.id);
    wizard->showModal(ImportWizard::kSize.cx, ImportWizard::kSize.cy, CString(u"Import from ") + source.name,
                      owner);
    if (wizard->sourceFailed())
        return {source.name.toUtf8() +
                    " could not be read to its end; it may have been disconnected. Nothing was copied.",
                ""};
    const int imported = wizard->getTotalPhotosCatalogued();
    if (imported == 0) return {};
    return {"", std::to_string(imported) + (imported == 1 ? " photo" : " photos") + " imported from " +
                    source.name.toUtf8()};
}

}  // namespace OrvantaPhotos

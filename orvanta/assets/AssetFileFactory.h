#pragma once
// AssetFileFactory: makes the file object of an asset, ImageFile or VideoFile by the codec's type.
//
// Contract: one factory is current at a time; without a host's it is the default one. A host that
// wants its own file objects derives, overrides handleConstruction and makes its factory current.
// A factory destroyed while current stops being current. The result is at owner count 0, or null
// for no codec or a codec of another type. Current-factory calls are not thread-safe: set the
// factory at start-up.

#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class AssetFile;
class Codec;

class AssetFileFactory {
public:
    AssetFileFactory() = default;
    AssetFileFactory(const AssetFileFactory&) = delete;
    AssetFileFactory& operator=(const AssetFileFactory&) = delete;
    virtual ~AssetFileFactory();

    // Asks the current factory. The times may be null.
    static AssetFile* constructAssetFile(const CString& path, Codec* codec, const FILETIME* writeTime,
                                         const FILETIME* creationTime);
    static AssetFileFactory* getCurrentFactory();
    static void clearCurrentFactory();
    virtual void makeFactoryCurrent();

protected:
    virtual AssetFile* handleConstruction(const CString& path, Codec* codec, const FILETIME* writeTime,
                                          const FILETIME* creationTime);
};

}  // namespace Orvanta

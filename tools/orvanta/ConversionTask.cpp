#include "ConversionTask.h"

#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/LastError.h"

namespace OrvantaTool {

using namespace Orvanta;

long Batch::claim() {
    if (stopping) return -1;
    const std::size_t index = next.fetch_add(1);
    return index < files.size() ? static_cast<long>(index) : -1;
}

ConversionTask::ConversionTask(Batch& batch, EventListener* listener)
    : Task(true), mBatch(batch), mListener(listener) {}

void ConversionTask::doTask() {
    for (long index; !wasKilled() && (index = mBatch.claim()) >= 0;) {
        Platform::setLastError(0);
        const bool converted = convert(mBatch.files[static_cast<std::size_t>(index)]);
        sendEventLater(FileConverted::create(static_cast<std::size_t>(index), converted,
                                             converted ? 0 : Platform::getLastError()),
                       mListener);
    }
}

bool ConversionTask::convert(const Batch::File& file) {
    try {
        return ImageCodec::downsizeAndConvertFile(file.source, file.destination, mBatch.maxWidth,
                                                  mBatch.maxHeight, mBatch.quality) != 0;
    } catch (const Exception&) {
        // A file the codec began to read and found unusable, or could not write.
        if (Platform::getLastError() == 0) Platform::setLastError(Platform::kErrorDamagedData);
        return false;
    }
}

}  // namespace OrvantaTool

#include "ConversionTask.h"

#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/LastError.h"

namespace OrvantaTool {

using namespace Orvanta;

ConversionTask::ConversionTask(Batch& batch, EventListener* listener)
    : QueueTask(batch.queue), mBatch(batch), mListener(listener) {}

void ConversionTask::doItem(std::size_t index) {
    Platform::setLastError(0);
    const bool converted = convert(mBatch.files[index]);
    sendEventLater(FileConverted::create(index, converted, converted ? 0 : Platform::getLastError()),
                   mListener);
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

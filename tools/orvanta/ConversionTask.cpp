#include "ConversionTask.h"

#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/File.h"
#include "orvanta/foundation/OrvantaSystem.h"

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
        const bool converted = convert(mBatch.files[static_cast<std::size_t>(index)]);
        sendEventLater(FileConverted::create(static_cast<std::size_t>(index), converted), mListener);
    }
}

bool ConversionTask::convert(const Batch::File& file) {
    int result = 0;
    try {
        result = ImageCodec::downsizeAndConvertFile(file.source, file.temporary, mBatch.maxWidth,
                                                    mBatch.maxHeight, mBatch.quality);
    } catch (const Exception&) {
        // A file the codec began to read and found unusable: counted as not converted.
        result = 0;
    }
    if (result != 0 && File::replace(file.temporary, file.destination)) return true;
    File::remove(file.temporary);
    return false;
}

}  // namespace OrvantaTool

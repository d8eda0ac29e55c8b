#pragma once
// ConversionTask: converts files of a batch on a thread of its own and reports each one to the
// user-interface thread.
//
// Contract: several tasks share one Batch, working through its queue (QueueTask): each converts the
// next unclaimed file until none is left, the queue is stopped, or the task is killed. The library writes
// each destination beside it and renames it into place only once complete, so a destination is never
// half-written; a file already being converted when the task is killed is finished. After each file the task
// sends a FileConverted event to the listener, from its own thread, with the reason of a failure.

#include <cstddef>
#include <vector>

#include "orvanta/codecs/CodecTypes.h"
#include "orvanta/foundation/Event.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/foundation/QueueTask.h"
#include "orvanta/foundation/WorkQueue.h"
#include "orvanta/platform/CString.h"

namespace OrvantaTool {

struct Batch {
    struct File {
        Orvanta::CString source;
        Orvanta::CString destination;
    };

    std::vector<File> files;
    int maxWidth = -1;
    int maxHeight = -1;
    Orvanta::ImageQuality quality = Orvanta::ImageQualityNormal;
    Orvanta::WorkQueue queue;
};

// One file done: its index in the batch, whether it was converted, and if not, the library's last
// error on the task's thread (LastError.h), 0 when it recorded none.
class FileConverted : public Orvanta::Event {
public:
    static FileConverted* create(std::size_t index, bool converted, int error) {
        return new FileConverted(index, converted, error);
    }
    std::size_t index;
    bool converted;
    int error;

private:
    FileConverted(std::size_t i, bool ok, int e) : index(i), converted(ok), error(e) {}
};

class ConversionTask : public Orvanta::QueueTask {
public:
    ConversionTask(Batch& batch, Orvanta::EventListener* listener);
    ~ConversionTask() override { killTask(); }

protected:
    void doItem(std::size_t index) override;

private:
    bool convert(const Batch::File& file);

    Batch& mBatch;
    Orvanta::EventListener* mListener;
};

}  // namespace OrvantaTool

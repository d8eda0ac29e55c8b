#pragma once
// What the acquisition tests share: the codecs registered once, a listener that collects a walk's
// camera items, and a sink for task events that pumps the library's queue until a task has ended.

#include <functional>
#include <string>
#include <vector>

#include "orvanta/acquire/WiaCameraItem.h"
#include "orvanta/acquire/WiaCameraWalkerListener.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/foundation/Task.h"
#include "orvanta/foundation/UniqueID.h"
#include "tests/support/TempDir.h"

namespace OrvantaTest {

// SANE for this process and the helpers it starts: SANE's test backend (two devices) and the
// crashing backend of tests/acquire/crash-backend, and none of the machine's settings.
class PrivateSane {
public:
    PrivateSane();

private:
    TempDir mDir;
};

// JPEG, TIFF and BMP, and the video codec.
void registerAcquireCodecs();

struct SeenItem {
    std::string fullName, name, extension;
    bool supported;
    long long time;
};

class ItemCollector : public Orvanta::WiaCameraWalkerListener {
public:
    // stopAfter: answer false on this item (1-based); 0 never.
    explicit ItemCollector(int stopAfter = 0, std::function<void(Orvanta::WiaCameraItem*)> each = nullptr)
        : mStopAfter(stopAfter), mEach(std::move(each)) {}
    bool onItem(Orvanta::WiaCameraItem* item) override;
    std::vector<SeenItem> items;

private:
    int mStopAfter;
    std::function<void(Orvanta::WiaCameraItem*)> mEach;
};

// Collects the events of the acquisition tasks on the thread that made it.
class TaskEvents : public Orvanta::EventListener {
public:
    struct Record {
        Orvanta::Task* task;
        int code;
        Orvanta::UniqueID id;
        std::string path;
    };
    void onEvent(Orvanta::Event* event) override;
    // Pumps the queue until task has sent its last event (finished or stopped); that code.
    int waitForEnd(Orvanta::Task* task);
    std::vector<Record> of(Orvanta::Task* task, int code) const;
    std::vector<Record> records;
};

}  // namespace OrvantaTest

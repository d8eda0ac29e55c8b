#include "tests/acquire/AcquireFixtures.h"

#include <chrono>
#include <cstdlib>
#include <mutex>
#include <thread>

#include "orvanta/acquire/AcquireTaskEvent.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/GenericVideoCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/MessageQueue.h"

using namespace Orvanta;

namespace OrvantaTest {

PrivateSane::PrivateSane() {
    writeFileBytes(mDir.file("dll.conf"), "test\norvantacrash\n");
    writeFileBytes(mDir.file("test.conf"), "number_of_devices 2\n");
    setenv("SANE_CONFIG_DIR", mDir.path().c_str(), 1);
    setenv("LD_LIBRARY_PATH", ORVANTA_CRASH_BACKEND_DIR, 1);
}

void registerAcquireCodecs() {
    static std::once_flag once;
    std::call_once(once, [] {
        orvantaIUInit();  // also starts the library's event queue
        CodecManager::registerCodec(GenericVideoCodec::create(nullptr));
    });
}

bool ItemCollector::onItem(WiaCameraItem* item) {
    const DateTime time = item->getTime();
    FILETIME fileTime;
    time.asFileTime(&fileTime);
    items.push_back({item->getFullName().toUtf8(), item->getName().toUtf8(), item->getExtension().toUtf8(),
                     item->isSupported(),
                     static_cast<long long>((static_cast<unsigned long long>(fileTime.dwHighDateTime) << 32) |
                                            fileTime.dwLowDateTime)});
    if (mEach) mEach(item);
    return mStopAfter == 0 || static_cast<int>(items.size()) < mStopAfter;
}

void TaskEvents::onEvent(Event* event) {
    auto* e = static_cast<AcquireTaskEvent*>(event);
    records.push_back({e->getTask(), e->getTaskCode(), e->getID(), e->getPath().toUtf8()});
}

int TaskEvents::waitForEnd(Task* task) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    while (std::chrono::steady_clock::now() < deadline) {
        MSG msg;
        while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE))
            if (!processMessage(&msg, nullptr)) Platform::dispatchMessage(&msg);
        for (const Record& r : records)
            if (r.task == task &&
                (r.code == AcquireTaskEvent::kFinished || r.code == AcquireTaskEvent::kStopped ||
                 r.code == AcquireTaskEvent::kError))
                return r.code;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return -1;
}

std::vector<TaskEvents::Record> TaskEvents::of(Task* task, int code) const {
    std::vector<Record> found;
    for (const Record& r : records)
        if (r.task == task && r.code == code) found.push_back(r);
    return found;
}

}  // namespace OrvantaTest

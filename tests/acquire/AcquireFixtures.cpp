#include "tests/acquire/AcquireFixtures.h"

#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <mutex>
#include <thread>

#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/GenericVideoCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/MessageQueue.h"
#include "tests/support/TestData.h"

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

bool pumpUntil(const std::function<bool()>& done) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        MSG msg;
        while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE))
            if (!processMessage(&msg, nullptr)) Platform::dispatchMessage(&msg);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

long long mtimeNs(const std::string& path) {
    struct stat info;
    if (stat(path.c_str(), &info) != 0) return -1;
    return static_cast<long long>(info.st_mtim.tv_sec) * 1000000000LL + info.st_mtim.tv_nsec;
}

void AcquireTest::SetUp() {
    ORVANTA_REQUIRE_TESTDATA();
    registerAcquireCodecs();
    TwainSupport::setTwainMode(TwainSupport::kTwainNever);
}

}  // namespace OrvantaTest

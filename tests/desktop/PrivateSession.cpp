#include "tests/desktop/PrivateSession.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <memory>

#include "tests/support/TempDir.h"

namespace OrvantaTest {

namespace {

std::unique_ptr<TempDir> gFolder;

class PrivateSession : public ::testing::Environment {
public:
    void SetUp() override {
        gFolder = std::make_unique<TempDir>();
        for (const char* name : {"config", "data", "run"}) mkdir(gFolder->file(name).c_str(), 0700);
        setenv("HOME", gFolder->path().c_str(), 1);
        setenv("XDG_CONFIG_HOME", gFolder->file("config").c_str(), 1);
        setenv("XDG_DATA_HOME", gFolder->file("data").c_str(), 1);
        setenv("XDG_RUNTIME_DIR", gFolder->file("run").c_str(), 1);
        setenv("GSETTINGS_BACKEND", "keyfile", 1);
        setenv("SDL_VIDEODRIVER", "offscreen", 1);
    }
    void TearDown() override { gFolder.reset(); }
};

const auto* gSession = ::testing::AddGlobalTestEnvironment(new PrivateSession());

}  // namespace

const std::string& sessionFolder() {
    return gFolder->path();
}

}  // namespace OrvantaTest

#include "bench/BenchData.h"

#include <cstdlib>
#include <filesystem>

namespace OrvantaBench {

std::string benchDataDir() {
    const char* configured = std::getenv("BENCH_DATA");
    const std::string dir = configured && *configured ? configured : "/tmp/bench-data";
    if (!std::filesystem::exists(dir + "/photo24.jpg")) {
        const std::string script = std::string(ORVANTA_SOURCE_DIR) + "/../shared/bench/make-data.sh";
        const std::string command = "BENCH_DATA='" + dir + "' bash '" + script + "' >&2";
        if (std::system(command.c_str()) != 0) return std::string();
    }
    return dir;
}

}  // namespace OrvantaBench

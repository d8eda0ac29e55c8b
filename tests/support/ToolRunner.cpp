#include "tests/support/ToolRunner.h"

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>

namespace OrvantaTest {

ToolRun runTool(const std::string& arguments) {
    const char* tool = std::getenv("ORVANTA_TOOL");
    const std::string command = std::string(tool ? tool : "orvanta") + " " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return {-1, std::string()};
    std::string output;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, n);
    const int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

}  // namespace OrvantaTest

#include "tests/support/ToolRunner.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "tests/support/TempDir.h"

namespace OrvantaTest {

bool toolAvailable() {
    return std::getenv("ORVANTA_TOOL") != nullptr;
}

ToolRun runTool(const std::string& arguments) {
    ToolRun run;
    const char* tool = std::getenv("ORVANTA_TOOL");
    if (!tool) return run;
    TempDir scratch;
    const std::string errorsFile = scratch.file("stderr");
    const std::string command = std::string(tool) + " " + arguments + " 2>'" + errorsFile + "'";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return run;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) run.output.append(buffer, n);
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.errors = readFileBytes(errorsFile);
    return run;
}

}  // namespace OrvantaTest

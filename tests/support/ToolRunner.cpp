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

ToolRun runShell(const std::string& command) {
    ToolRun run;
    const char* tool = std::getenv("ORVANTA_TOOL");
    if (!tool) return run;
    std::string line = command;
    for (std::size_t at; (at = line.find("{tool}")) != std::string::npos;)
        line.replace(at, 6, "'" + std::string(tool) + "'");
    TempDir scratch;
    const std::string errorsFile = scratch.file("stderr");
    FILE* pipe = popen(("(" + line + ") 2>'" + errorsFile + "'").c_str(), "r");
    if (!pipe) return run;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) run.output.append(buffer, n);
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.errors = readFileBytes(errorsFile);
    return run;
}

ToolRun runTool(const std::string& arguments) {
    return runShell("timeout 120 {tool} " + arguments);
}

}  // namespace OrvantaTest

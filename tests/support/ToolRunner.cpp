#include "tests/support/ToolRunner.h"

#include <fcntl.h>
#include <signal.h>
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

ToolProcess::ToolProcess(const std::vector<std::string>& arguments) {
    const char* tool = std::getenv("ORVANTA_TOOL");
    int fds[2];
    if (!tool || pipe(fds) != 0) return;
    std::vector<char*> argv{const_cast<char*>(tool)};
    for (const std::string& a : arguments) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    mPid = fork();
    if (mPid == 0) {
        dup2(fds[1], STDOUT_FILENO);
        const int null = ::open("/dev/null", O_WRONLY);
        dup2(null, STDERR_FILENO);
        close(fds[0]);
        execv(tool, argv.data());
        _exit(127);
    }
    close(fds[1]);
    mOutput = fds[0];
}

ToolProcess::~ToolProcess() {
    kill();
    if (mOutput >= 0) close(mOutput);
}

bool ToolProcess::readLine(std::string* line) {
    for (;;) {
        const std::size_t end = mPending.find('\n');
        if (end != std::string::npos) {
            *line = mPending.substr(0, end);
            mPending.erase(0, end + 1);
            return true;
        }
        char buffer[4096];
        const ssize_t n = mOutput < 0 ? 0 : read(mOutput, buffer, sizeof buffer);
        if (n <= 0) return false;
        mPending.append(buffer, static_cast<std::size_t>(n));
    }
}

bool ToolProcess::kill() {
    if (mPid <= 0) return false;
    ::kill(mPid, SIGKILL);
    const bool died = wait() == -1 && WIFSIGNALED(mStatus) && WTERMSIG(mStatus) == SIGKILL;
    return died;
}

int ToolProcess::wait() {
    if (mPid > 0) {
        waitpid(mPid, &mStatus, 0);
        mPid = -1;
    }
    return WIFEXITED(mStatus) ? WEXITSTATUS(mStatus) : -1;
}

}  // namespace OrvantaTest

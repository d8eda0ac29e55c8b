#pragma once
// Runs the orvanta command-line host (the binary CTest names in $ORVANTA_TOOL) as a user would.

#include <sys/types.h>

#include <string>
#include <vector>

namespace OrvantaTest {

struct ToolRun {
    int status = -1;     // exit status, −1 if the host did not exit normally or could not start
    std::string output;  // what it printed on standard output
    std::string errors;  // what it printed on standard error
};

// arguments: the command line after "orvanta", already quoted for the shell. A host that has not
// ended after two minutes is stopped (status 124), so that a hang fails the test instead of the run.
ToolRun runTool(const std::string& arguments);
// A shell command line, with the host's path quoted in place of every "{tool}".
ToolRun runShell(const std::string& command);
// True when the host can be run (the tests run through CTest, which names it).
bool toolAvailable();

// A run of the host that the test steers: started at once with these arguments (no shell), its
// standard output read line by line as it comes, its errors dropped, and killed by its pid when the
// test says. The destructor kills a host still running and reaps it.
class ToolProcess {
public:
    explicit ToolProcess(const std::vector<std::string>& arguments);
    ~ToolProcess();
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    bool started() const { return mPid > 0; }
    // The next line of standard output, without its newline; false at the end of the output.
    bool readLine(std::string* line);
    // SIGKILL and reap; true when the host was still running and died of it.
    bool kill();
    // Waits for the end: the exit status, or −1 when a signal ended it.
    int wait();

private:
    pid_t mPid = -1;
    int mOutput = -1;
    std::string mPending;
    int mStatus = 0;
};

}  // namespace OrvantaTest

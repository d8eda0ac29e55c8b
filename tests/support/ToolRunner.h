#pragma once
// Runs the orvanta command-line host (the binary CTest names in $ORVANTA_TOOL) as a user would.

#include <string>

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

}  // namespace OrvantaTest

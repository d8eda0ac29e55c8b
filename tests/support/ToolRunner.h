#pragma once
// Runs the orvanta command-line host (the binary CTest names in $ORVANTA_TOOL) as a user would.

#include <string>

namespace OrvantaTest {

struct ToolRun {
    int status = -1;     // exit status, −1 if the host did not exit normally or could not start
    std::string output;  // what it printed on standard output
    std::string errors;  // what it printed on standard error
};

// arguments: the command line after "orvanta", already quoted for the shell.
ToolRun runTool(const std::string& arguments);
// True when the host can be run (the tests run through CTest, which names it).
bool toolAvailable();

}  // namespace OrvantaTest

#pragma once
// Runs the orvanta command-line host (the binary CTest names in $ORVANTA_TOOL) as a user would.

#include <string>

namespace OrvantaTest {

struct ToolRun {
    int status;          // exit status, −1 if the host did not exit normally
    std::string output;  // standard output and standard error together
};

// arguments: the command line after "orvanta", already quoted for the shell.
ToolRun runTool(const std::string& arguments);

}  // namespace OrvantaTest

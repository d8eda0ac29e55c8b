#pragma once
// The commands of the orvanta host. Each takes the arguments after its own name and returns the
// process's exit status.

#include <string>
#include <vector>

namespace OrvantaTool {

using Arguments = std::vector<std::string>;

struct Command {
    const char* name;
    const char* synopsis;  // one line for the overview
    const char* help;      // the full text of `orvanta help NAME`
    int (*run)(const Arguments& arguments);
};

// Every command the host knows, in the order the overview lists them.
const std::vector<Command>& commands();

int runInfo(const Arguments& arguments);
int runEdit(const Arguments& arguments);
int runBatchConvert(const Arguments& arguments);
int runDb(const Arguments& arguments);
int runConvert(const Arguments& arguments);
int runRotate(const Arguments& arguments);
int runThumb(const Arguments& arguments);
int runCatalog(const Arguments& arguments);
int runWallpaper(const Arguments& arguments);
int runPrint(const Arguments& arguments);
int runPrinters(const Arguments& arguments);
int runDevices(const Arguments& arguments);
int runImport(const Arguments& arguments);

}  // namespace OrvantaTool

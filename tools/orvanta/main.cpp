// orvanta: the command-line host of the Orvanta library.

#include <cstdio>
#include <cstring>

#include "Commands.h"

namespace OrvantaTool {

const std::vector<Command>& commands() {
    static const std::vector<Command> table = {
        {"info", "info FILE...        what each picture is: type, size, quality",
         "usage: orvanta info FILE...\n"
         "\n"
         "Prints one tab-separated line per file:\n"
         "  PATH  TYPE  WIDTH  HEIGHT  QUALITY   TYPE is jpeg, tiff or bmp; QUALITY normal, draft or high\n"
         "  PATH  unsupported                    no codec knows the file's extension\n"
         "  PATH  unreadable                     the codec could not read the file's header\n"
         "Exit status 1 if any file was not read, else 0.\n",
         runInfo},
        {"db", "db stats|dump FILE   what a catalogue or thumbnail store holds",
         "usage: orvanta db stats FILE\n"
         "       orvanta db dump FILE\n"
         "\n"
         "FILE is a record store (\"###OrvantaDB###\") file: a catalogue or a thumbnail store.\n"
         "stats prints one tab-separated line per figure: the header (block size, block count, format\n"
         "  version), records, whether an info record is there, blocks in records and free, payload bytes,\n"
         "  how many records are property lists, and each ordering (\"##OrvantaDBI###\") file beside it\n"
         "  (a file in the same folder whose name starts with FILE's name).\n"
         "dump prints every record in file order: its id, size and first block, and for a property list\n"
         "  one line per property: name, type (string, int, datetime, id, bytes), value.\n"
         "The file is opened as the library opens it (read-write, exclusively): an interrupted change is\n"
         "completed or undone first. Exit status 1 if the file does not open, 2 for bad arguments.\n",
         runDb},
    };
    return table;
}

}  // namespace OrvantaTool

namespace {

void printOverview(FILE* out) {
    std::fprintf(out, "usage: orvanta COMMAND [ARGUMENTS]\n\nCommands:\n");
    for (const auto& command : OrvantaTool::commands()) std::fprintf(out, "  orvanta %s\n", command.synopsis);
    std::fprintf(out, "\n`orvanta help COMMAND` or `orvanta COMMAND --help` describes one command.\n");
}

const OrvantaTool::Command* findCommand(const char* name) {
    for (const auto& command : OrvantaTool::commands())
        if (std::strcmp(command.name, name) == 0) return &command;
    return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || !std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h")) {
        printOverview(argc < 2 ? stderr : stdout);
        return argc < 2 ? 2 : 0;
    }
    if (!std::strcmp(argv[1], "help")) {
        const OrvantaTool::Command* command = argc > 2 ? findCommand(argv[2]) : nullptr;
        if (!command) {
            printOverview(stdout);
            return argc > 2 ? 2 : 0;
        }
        std::fputs(command->help, stdout);
        return 0;
    }
    const OrvantaTool::Command* command = findCommand(argv[1]);
    if (!command) {
        std::fprintf(stderr, "orvanta: unknown command '%s'\n", argv[1]);
        printOverview(stderr);
        return 2;
    }
    OrvantaTool::Arguments arguments(argv + 2, argv + argc);
    for (const auto& argument : arguments) {
        if (argument == "--help" || argument == "-h") {
            std::fputs(command->help, stdout);
            return 0;
        }
    }
    return command->run(arguments);
}

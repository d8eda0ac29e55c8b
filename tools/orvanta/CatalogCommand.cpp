// orvanta catalog: a user's catalogue of photographs and videos. This file dispatches the
// subcommands and holds what they share; each subcommand has its own file.

#include "CatalogCommand.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "orvanta/assets/CatalogueLocation.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/LastError.h"
#include "orvanta/store/Database.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

struct Subcommand {
    const char* name;
    int (*run)(const CatalogueChoice& choice, const Arguments& arguments);
};

const Subcommand kSubcommands[] = {
    {"import", runCatalogImport}, {"list", runCatalogList},   {"thumb", runCatalogThumb},
    {"check", runCatalogCheck},   {"stats", runCatalogStats},
};

int usage() {
    std::fprintf(stderr,
                 "usage: orvanta catalog import|list|thumb|check|stats [--catalog FILE] ...\n"
                 "       (orvanta help catalog)\n");
    return 2;
}

}  // namespace

std::string isoDate(const DateTime& date) {
    if (date.isNull()) return std::string();
    char text[80];  // room for any int in every field, though a date's fields are small
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", date.getYear(), date.getMonth(),
                  date.getMDay(), date.getHour(), date.getMinute(), date.getSecond());
    return text;
}

AssetDb* openCatalogue(const CatalogueChoice& choice, bool create) {
    if (choice.path.empty()) {
        std::fprintf(stderr,
                     "orvanta catalog: no catalogue: give --catalog FILE, or set HOME or XDG_DATA_HOME\n");
        return nullptr;
    }
    const CString path = CString::fromUtf8(choice.path);
    struct stat info;
    if (stat(choice.path.c_str(), &info) != 0) {
        if (!create) {
            std::fprintf(stderr, "orvanta catalog: there is no catalogue at %s (import pictures first)\n",
                         choice.path.c_str());
            return nullptr;
        }
        if ((choice.isDefault && !CatalogueLocation::makeDataFolder()) || !AssetDb::createFile(path)) {
            std::fprintf(stderr, "orvanta catalog: cannot make the catalogue %s: %s\n", choice.path.c_str(),
                         Platform::describeError(Platform::getLastError()).c_str());
            return nullptr;
        }
    }
    try {
        return AssetDb::create(path);
    } catch (const Exception& e) {
        // The store says why: another program holds it, it is no catalogue, it is damaged...
        const std::string why = Database::explainOpenFailure(path).toUtf8();
        std::fprintf(stderr, "orvanta catalog: %s: %s%s%s\n", choice.path.c_str(),
                     CString(e.getMessage()).toUtf8().c_str(), why.empty() ? "" : ": ", why.c_str());
        return nullptr;
    }
}

int runCatalog(const Arguments& arguments) {
    CatalogueChoice choice{CatalogueLocation::getDefaultCatalogue(), true};
    Arguments rest;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--catalog") {
            if (++i == arguments.size()) return usage();
            choice = CatalogueChoice{arguments[i], false};
        } else if (argument.rfind("--catalog=", 0) == 0) {
            choice = CatalogueChoice{argument.substr(std::strlen("--catalog=")), false};
        } else {
            rest.push_back(argument);
        }
    }
    if (rest.empty()) return usage();
    for (const Subcommand& subcommand : kSubcommands)
        if (rest[0] == subcommand.name)
            return subcommand.run(choice, Arguments(rest.begin() + 1, rest.end()));
    std::fprintf(stderr, "orvanta catalog: unknown subcommand '%s'\n", rest[0].c_str());
    return usage();
}

}  // namespace OrvantaTool

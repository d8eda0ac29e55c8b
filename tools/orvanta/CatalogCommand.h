#pragma once
// The parts of `orvanta catalog` its subcommands share: which catalogue a run works on, how it
// opens, and how a date is written.

#include <string>

#include "Commands.h"
#include "orvanta/assets/AssetDb.h"
#include "orvanta/foundation/DateTime.h"

namespace OrvantaTool {

// The catalogue a subcommand was given: --catalog FILE, or the user's default one.
struct CatalogueChoice {
    std::string path;
    bool isDefault;
};

// Opens the chosen catalogue, or says why not on standard error and answers null. With create, a
// missing catalogue is made (and the user's data folder with it); without, it is an error.
Orvanta::AssetDb* openCatalogue(const CatalogueChoice& choice, bool create);

// "2004-02-29T08:15:00": the local date and time of a timestamp, ISO 8601; empty for no date.
std::string isoDate(const Orvanta::DateTime& date);

// The subcommands; each takes the arguments after its name with --catalog taken out.
int runCatalogImport(const CatalogueChoice& choice, const Arguments& arguments);
int runCatalogList(const CatalogueChoice& choice, const Arguments& arguments);
int runCatalogThumb(const CatalogueChoice& choice, const Arguments& arguments);
int runCatalogCheck(const CatalogueChoice& choice, const Arguments& arguments);
int runCatalogStats(const CatalogueChoice& choice, const Arguments& arguments);

}  // namespace OrvantaTool

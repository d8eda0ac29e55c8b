// orvanta catalog import and thumb: not built yet. They stand here so that the group's dispatch and
// options are whole; their own files replace this one.

#include <cstdio>

#include "CatalogCommand.h"

namespace OrvantaTool {

namespace {

int notBuilt(const char* name) {
    std::fprintf(stderr, "orvanta catalog %s: not built yet\n", name);
    return 2;
}

}  // namespace

int runCatalogImport(const CatalogueChoice&, const Arguments&) {
    return notBuilt("import");
}

int runCatalogThumb(const CatalogueChoice&, const Arguments&) {
    return notBuilt("thumb");
}

}  // namespace OrvantaTool

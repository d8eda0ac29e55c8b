// libuuid, loaded on the first call into it: see LazyLibrary.

#include <uuid/uuid.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

#define ORVANTA_UUID_FUNCTIONS(F)                                 \
    F(void, uuid_generate_random, (uuid_t out), (out))            \
    F(int, uuid_is_null, (const uuid_t id), (id))                 \
    F(int, uuid_parse, (const char* text, uuid_t id), (text, id)) \
    F(void, uuid_unparse_lower, (const uuid_t id, char* text), (id, text))

ORVANTA_LAZY_TABLE(ORVANTA_UUID_SONAME, ORVANTA_UUID_FUNCTIONS)

}  // namespace

ORVANTA_UUID_FUNCTIONS(ORVANTA_LAZY_FORWARD)

// libexif, loaded on the first call into it: see LazyLibrary.

#include <libexif/exif-data.h>
#include <libexif/exif-mem.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

#define ORVANTA_EXIF_FUNCTIONS(F)                                                                  \
    F(ExifMem*, exif_mem_new_default, (void), ())                                                  \
    F(void, exif_mem_unref, (ExifMem * mem), (mem))                                                \
    F(void*, exif_mem_alloc, (ExifMem * mem, ExifLong size), (mem, size))                          \
    F(void, exif_mem_free, (ExifMem * mem, void* block), (mem, block))                             \
    F(ExifData*, exif_data_new_mem, (ExifMem * mem), (mem))                                        \
    F(void, exif_data_unref, (ExifData * data), (data))                                            \
    F(void, exif_data_set_option, (ExifData * data, ExifDataOption option), (data, option))        \
    F(void, exif_data_unset_option, (ExifData * data, ExifDataOption option), (data, option))      \
    F(void, exif_data_load_data, (ExifData * data, const unsigned char* bytes, unsigned int size), \
      (data, bytes, size))                                                                         \
    F(void, exif_data_save_data, (ExifData * data, unsigned char** bytes, unsigned int* size),     \
      (data, bytes, size))

ORVANTA_LAZY_TABLE(ORVANTA_EXIF_SONAME, ORVANTA_EXIF_FUNCTIONS)

}  // namespace

ORVANTA_EXIF_FUNCTIONS(ORVANTA_LAZY_FORWARD)

// libtiff, loaded on the first call into it: see LazyLibrary.

#include <tiffio.h>

#include <cstdarg>

#include "orvanta/platform/LazyLibrary.h"

namespace {

// The functions taking a tag's values as arguments are reached through their va_list forms.
#define ORVANTA_TIFF_FUNCTIONS(F)                                                                  \
    F(TIFF*, TIFFClientOpen,                                                                       \
      (const char* name, const char* mode, thandle_t handle, TIFFReadWriteProc read,               \
       TIFFReadWriteProc write, TIFFSeekProc seek, TIFFCloseProc close, TIFFSizeProc size,         \
       TIFFMapFileProc map, TIFFUnmapFileProc unmap),                                              \
      (name, mode, handle, read, write, seek, close, size, map, unmap))                            \
    F(void, TIFFClose, (TIFF * tif), (tif))                                                        \
    F(int, TIFFFlush, (TIFF * tif), (tif))                                                         \
    F(int, TIFFIsTiled, (TIFF * tif), (tif))                                                       \
    F(int, TIFFReadRGBAImageOriented,                                                              \
      (TIFF * tif, uint32_t width, uint32_t height, uint32_t * raster, int orientation, int stop), \
      (tif, width, height, raster, orientation, stop))                                             \
    F(int, TIFFReadScanline, (TIFF * tif, void* buffer, uint32_t row, uint16_t sample),            \
      (tif, buffer, row, sample))                                                                  \
    F(int, TIFFWriteScanline, (TIFF * tif, void* buffer, uint32_t row, uint16_t sample),           \
      (tif, buffer, row, sample))                                                                  \
    F(tmsize_t, TIFFScanlineSize, (TIFF * tif), (tif))                                             \
    F(TIFFErrorHandler, TIFFSetErrorHandler, (TIFFErrorHandler handler), (handler))                \
    F(TIFFErrorHandler, TIFFSetWarningHandler, (TIFFErrorHandler handler), (handler))              \
    F(int, TIFFVGetField, (TIFF * tif, uint32_t tag, va_list values), (tif, tag, values))          \
    F(int, TIFFVGetFieldDefaulted, (TIFF * tif, uint32_t tag, va_list values), (tif, tag, values)) \
    F(int, TIFFVSetField, (TIFF * tif, uint32_t tag, va_list values), (tif, tag, values))

ORVANTA_LAZY_TABLE(ORVANTA_TIFF_SONAME, ORVANTA_TIFF_FUNCTIONS)

}  // namespace

ORVANTA_TIFF_FUNCTIONS(ORVANTA_LAZY_FORWARD)

extern "C" int TIFFGetField(TIFF* tif, uint32_t tag, ...) {
    va_list values;
    va_start(values, tag);
    const int result = table().TIFFVGetField(tif, tag, values);
    va_end(values);
    return result;
}

extern "C" int TIFFGetFieldDefaulted(TIFF* tif, uint32_t tag, ...) {
    va_list values;
    va_start(values, tag);
    const int result = table().TIFFVGetFieldDefaulted(tif, tag, values);
    va_end(values);
    return result;
}

extern "C" int TIFFSetField(TIFF* tif, uint32_t tag, ...) {
    va_list values;
    va_start(values, tag);
    const int result = table().TIFFVSetField(tif, tag, values);
    va_end(values);
    return result;
}

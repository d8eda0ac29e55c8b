// libjpeg (libjpeg-turbo), loaded on the first call into it: see LazyLibrary.

#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

// F(return type, name, parameters, arguments) for every function the engine calls.
#define ORVANTA_JPEG_FUNCTIONS(F)                                                                           \
    F(struct jpeg_error_mgr*, jpeg_std_error, (struct jpeg_error_mgr * err), (err))                         \
    F(void, jpeg_CreateCompress, (j_compress_ptr cinfo, int version, size_t size), (cinfo, version, size))  \
    F(void, jpeg_CreateDecompress, (j_decompress_ptr cinfo, int version, size_t size),                      \
      (cinfo, version, size))                                                                               \
    F(void, jpeg_destroy_compress, (j_compress_ptr cinfo), (cinfo))                                         \
    F(void, jpeg_destroy_decompress, (j_decompress_ptr cinfo), (cinfo))                                     \
    F(void, jpeg_mem_dest, (j_compress_ptr cinfo, unsigned char** buffer, unsigned long* size),             \
      (cinfo, buffer, size))                                                                                \
    F(void, jpeg_mem_src, (j_decompress_ptr cinfo, const unsigned char* buffer, unsigned long size),        \
      (cinfo, buffer, size))                                                                                \
    F(void, jpeg_set_defaults, (j_compress_ptr cinfo), (cinfo))                                             \
    F(void, jpeg_set_colorspace, (j_compress_ptr cinfo, J_COLOR_SPACE space), (cinfo, space))               \
    F(void, jpeg_set_quality, (j_compress_ptr cinfo, int quality, boolean baseline),                        \
      (cinfo, quality, baseline))                                                                           \
    F(void, jpeg_start_compress, (j_compress_ptr cinfo, boolean allTables), (cinfo, allTables))             \
    F(JDIMENSION, jpeg_write_scanlines, (j_compress_ptr cinfo, JSAMPARRAY rows, JDIMENSION count),          \
      (cinfo, rows, count))                                                                                 \
    F(void, jpeg_finish_compress, (j_compress_ptr cinfo), (cinfo))                                          \
    F(void, jpeg_write_marker, (j_compress_ptr cinfo, int marker, const JOCTET* data, unsigned int length), \
      (cinfo, marker, data, length))                                                                        \
    F(int, jpeg_read_header, (j_decompress_ptr cinfo, boolean requireImage), (cinfo, requireImage))         \
    F(boolean, jpeg_start_decompress, (j_decompress_ptr cinfo), (cinfo))                                    \
    F(JDIMENSION, jpeg_read_scanlines, (j_decompress_ptr cinfo, JSAMPARRAY rows, JDIMENSION count),         \
      (cinfo, rows, count))                                                                                 \
    F(void, jpeg_calc_output_dimensions, (j_decompress_ptr cinfo), (cinfo))                                 \
    F(void, jpeg_save_markers, (j_decompress_ptr cinfo, int marker, unsigned int limit),                    \
      (cinfo, marker, limit))                                                                               \
    F(jvirt_barray_ptr*, jpeg_read_coefficients, (j_decompress_ptr cinfo), (cinfo))                         \
    F(void, jpeg_write_coefficients, (j_compress_ptr cinfo, jvirt_barray_ptr * arrays), (cinfo, arrays))    \
    F(void, jpeg_copy_critical_parameters, (j_decompress_ptr source, j_compress_ptr target), (source, target))

ORVANTA_LAZY_TABLE(ORVANTA_JPEG_SONAME, ORVANTA_JPEG_FUNCTIONS)

}  // namespace

ORVANTA_JPEG_FUNCTIONS(ORVANTA_LAZY_FORWARD)

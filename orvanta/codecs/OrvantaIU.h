/* The flat image interface: plain C functions for a host that only wants to ask what an image file
 * is, and to shrink and convert one in a single call.
 *
 * Call orvantaIUInit first and orvantaIUDeInit last; GetOrvantaVersion may be called at any time.
 * Paths are UTF-16 (char16_t); each function that takes a path has a twin with the suffix U8 that
 * takes it in UTF-8. Types: 1 JPEG, 2 TIFF, 3 BMP. Qualities: 0 normal, 1 draft, 2 high.
 * After a call that failed, orvantaIUGetLastError says why. */
#ifndef ORVANTA_CODECS_ORVANTAIU_H
#define ORVANTA_CODECS_ORVANTAIU_H

#ifdef __cplusplus
extern "C" {
#else
#include <uchar.h>
#endif

#define ORVANTA_IU_API __attribute__((visibility("default")))

/* Starts the library and registers its codecs, unless the host started the library itself. */
ORVANTA_IU_API void orvantaIUInit(void);
/* Stops the library, if orvantaIUInit started it. */
ORVANTA_IU_API void orvantaIUDeInit(void);
/* Non-zero when the file's type is known and, if its size was asked, its header could be read.
 * width and height are always written (0 when unknown). */
ORVANTA_IU_API int orvantaIUGetImageFileInformation(const char16_t* path, int* type, int* width, int* height,
                                                    int* quality);
ORVANTA_IU_API int orvantaIUGetImageFileInformationU8(const char* path, int* type, int* width, int* height,
                                                      int* quality);
/* Writes source to destination in the destination's format, fitted into maxWidth x maxHeight
 * (-1: that side is free); quality as above. Returns 0 on failure, 1 for a plain copy, else the OR of
 * 4 (the format changed), 8 (the picture was made smaller) and 16 (the quality differs from the
 * source's). A JPEG written from a JPEG keeps its EXIF, XMP, IPTC and comment segments. */
ORVANTA_IU_API int orvantaIUDownsizeAndConvertFile(const char16_t* source, const char16_t* destination,
                                                   int maxWidth, int maxHeight, int quality);
ORVANTA_IU_API int orvantaIUDownsizeAndConvertFileU8(const char* source, const char* destination,
                                                     int maxWidth, int maxHeight, int quality);
/* Why the last call of orvantaIUGetImageFileInformation or orvantaIUDownsizeAndConvertFile on this
 * thread failed: the system's errno ("no space left on the device" is ENOSPC), or one of the
 * library's own codes above 0x10000 (0x10001 not a regular file, 0x10002 a file with other hard
 * links, 0x10003 damaged picture data); 0 when no reason was recorded. When text is not null, up
 * to size bytes of a UTF-8 description, always terminated, are written to it ("" for 0). Each
 * thread has its own; the two functions clear it when they start. */
ORVANTA_IU_API int orvantaIUGetLastError(char* text, int size);
/* Non-zero when a codec is registered for the file's extension. */
ORVANTA_IU_API int orvantaIUIsFileTypeSupported(const char16_t* path);
ORVANTA_IU_API int orvantaIUIsFileTypeSupportedU8(const char* path);
/* The library's version as major << 16 | minor << 8 | patch: 0x10001 is 1.0.1. */
ORVANTA_IU_API int GetOrvantaVersion(void);

#ifdef __cplusplus
}
#endif

#endif

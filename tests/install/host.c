/* A C host of the flat interface, built against the installed library through pkg-config. */
#include <stdio.h>
#include <string.h>

#include "orvanta/codecs/OrvantaIU.h"

int main(void) {
    if (GetOrvantaVersion() != 0x10001) return 1;
    orvantaIUInit();
    int supported = orvantaIUIsFileTypeSupportedU8("holiday.BMP");
    int unknown = orvantaIUIsFileTypeSupportedU8("notes.txt");
    int type = 0, width = -1, height = -1, quality = 0;
    int found = orvantaIUGetImageFileInformationU8("missing.xyz", &type, &width, &height, &quality);
    orvantaIUDeInit();
    if (!supported || unknown || found || width != 0 || height != 0) return 1;
    printf("c host: ok\n");
    return 0;
}

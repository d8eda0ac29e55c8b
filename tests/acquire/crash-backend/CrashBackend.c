/* A SANE backend that fails the way drivers of device makers do, for the tests of the scanner
 * helper process. It offers one scanner, "orvantacrash:0" (SANE puts the backend's name before
 * its "0"), and behaves by
 * $ORVANTA_CRASH_BACKEND: "list" dies while devices are listed, "read" dies in the middle of a
 * scan, "hang" never returns from reading. Loaded by SANE's dll backend from LD_LIBRARY_PATH, which
 * answers the entry points left out here (exit, close, cancel, the I/O modes) as unsupported. */

#include <sane/sane.h>
#include <sane/saneopts.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static const SANE_Device kDevice = {"0", "Orvanta", "Crash Tester", "flatbed scanner"};
static const SANE_Device* kDevices[] = {&kDevice, NULL};
static const SANE_Option_Descriptor kCount = {
    SANE_NAME_NUM_OPTIONS, "",    "", SANE_TYPE_INT, SANE_UNIT_NONE, sizeof(SANE_Int), SANE_CAP_SOFT_DETECT,
    SANE_CONSTRAINT_NONE,  {NULL}};

static int behaves(const char* how) {
    const char* mode = getenv("ORVANTA_CRASH_BACKEND");
    return mode && strcmp(mode, how) == 0;
}

static void die(void) {
    raise(SIGSEGV);
}

SANE_Status sane_orvantacrash_init(SANE_Int* version, SANE_Auth_Callback authorize) {
    if (version) *version = SANE_VERSION_CODE(1, 0, 0);
    return SANE_STATUS_GOOD;
}

SANE_Status sane_orvantacrash_get_devices(const SANE_Device*** list, SANE_Bool local) {
    if (behaves("list")) die();
    *list = kDevices;
    return SANE_STATUS_GOOD;
}

SANE_Status sane_orvantacrash_open(SANE_String_Const name, SANE_Handle* handle) {
    *handle = (SANE_Handle)&kDevice;
    return SANE_STATUS_GOOD;
}

const SANE_Option_Descriptor* sane_orvantacrash_get_option_descriptor(SANE_Handle handle, SANE_Int option) {
    return option == 0 ? &kCount : NULL;
}

SANE_Status sane_orvantacrash_control_option(SANE_Handle handle, SANE_Int option, SANE_Action action,
                                             void* value, SANE_Int* info) {
    if (option != 0 || action != SANE_ACTION_GET_VALUE) return SANE_STATUS_INVAL;
    *(SANE_Int*)value = 1;
    return SANE_STATUS_GOOD;
}

SANE_Status sane_orvantacrash_get_parameters(SANE_Handle handle, SANE_Parameters* parameters) {
    /* A 16 x 16 grey frame: format, last frame, bytes a line, pixels a line, lines, depth. */
    *parameters = (SANE_Parameters){SANE_FRAME_GRAY, SANE_TRUE, 16, 16, 16, 8};
    return SANE_STATUS_GOOD;
}

SANE_Status sane_orvantacrash_start(SANE_Handle handle) {
    return SANE_STATUS_GOOD;
}

SANE_Status sane_orvantacrash_read(SANE_Handle handle, SANE_Byte* data, SANE_Int most, SANE_Int* length) {
    if (behaves("read")) die();
    if (behaves("hang"))
        for (;;) pause();
    *length = 0;
    return SANE_STATUS_EOF;
}

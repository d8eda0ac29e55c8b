/* A SANE backend that fails the way drivers of device makers do, for the tests of the scanner
 * helper process. It offers one scanner, "orvantacrash:0" (SANE puts the backend's name before
 * its "0"), and behaves by
 * $ORVANTA_CRASH_BACKEND: "list" dies while devices are listed, "read" dies in the middle of a
 * scan, "hang" never returns from reading. Loaded by SANE's dll backend from LD_LIBRARY_PATH. */

#include <sane/sane.h>
#include <sane/saneopts.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static const SANE_Device kDevice = {"0", "Orvanta", "Crash Tester", "flatbed scanner"};
static const SANE_Device* kDevices[] = {&kDevice, NULL};
static const SANE_Option_Descriptor kCount = {SANE_NAME_NUM_OPTIONS, "", "", SANE_TYPE_INT, SANE_UNIT_NONE,
                                              sizeof(SANE_Int), SANE_CAP_SOFT_DETECT, SANE_CONSTRAINT_NONE, {NULL}};

static int behaves(const char* how) {
    const char* mode = getenv("ORVANTA_CRASH_BACKEND");
    return mode && strcmp(mode, how) == 0;
}

static void die(void) {
    raise(SIGSEGV);
}

SANE_Status sane_orvantacrash_init(SANE_Int* version, SANE_Auth_Callback authorize) {
    (void)authorize;
    if (version) *version = SANE_VERSION_CODE(1, 0, 0);
    return SANE_STATUS_GOOD;
}

void sane_orvantacrash_exit(void) {}

SANE_Status sane_orvantacrash_get_devices(const SANE_Device*** list, SANE_Bool local) {
    (void)local;
    if (behaves("list")) die();
    *list = kDevices;
    return SANE_STATUS_GOOD;
}

SANE_Status sane_orvantacrash_open(SANE_String_Const name, SANE_Handle* handle) {
    (void)name;
    *handle = (SANE_Handle)&kDevice;
    return SANE_STATUS_GOOD;
}

void sane_orvantacrash_close(SANE_Handle handle) {
    (void)handle;
}

const SANE_Option_Descriptor* sane_orvantacrash_get_option_descriptor(SANE_Handle handle, SANE_Int option) {
    (void)handle;
    return option == 0 ? &kCount : NULL;
}

SANE_Status sane_orvantacrash_control_option(SANE_Handle handle, SANE_Int option, SANE_Action action, void* value,
                                             SANE_Int* info) {
    (void)handle;
    (void)info;
    if (option != 0 || action != SANE_ACTION_GET_VALUE) return SANE_STATUS_INVAL;
    *(SANE_Int*)value = 1;
    return SANE_STATUS_GOOD;
}

SANE_Status sane_orvantacrash_get_parameters(SANE_Handle handle, SANE_Parameters* parameters) {
    (void)handle;
    parameters->format = SANE_FRAME_GRAY;
    parameters->last_frame = SANE_TRUE;
    parameters->bytes_per_line = 16;
    parameters->pixels_per_line = 16;
    parameters->lines = 16;
    parameters->depth = 8;
    return SANE_STATUS_GOOD;
}

SANE_Status sane_orvantacrash_start(SANE_Handle handle) {
    (void)handle;
    return SANE_STATUS_GOOD;
}

SANE_Status sane_orvantacrash_read(SANE_Handle handle, SANE_Byte* data, SANE_Int most, SANE_Int* length) {
    (void)handle;
    (void)data;
    (void)most;
    if (behaves("read")) die();
    if (behaves("hang"))
        for (;;) pause();
    *length = 0;
    return SANE_STATUS_EOF;
}

void sane_orvantacrash_cancel(SANE_Handle handle) {
    (void)handle;
}

SANE_Status sane_orvantacrash_set_io_mode(SANE_Handle handle, SANE_Bool nonBlocking) {
    (void)handle;
    return nonBlocking ? SANE_STATUS_UNSUPPORTED : SANE_STATUS_GOOD;
}

SANE_Status sane_orvantacrash_get_select_fd(SANE_Handle handle, SANE_Int* fd) {
    (void)handle;
    (void)fd;
    return SANE_STATUS_UNSUPPORTED;
}

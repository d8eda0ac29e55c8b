// Xlib, loaded on the first call into it: see LazyLibrary. The display layer only sets Xlib's error
// handlers on the connection SDL opened, which has loaded Xlib already; this finds the same library.

#include <X11/Xlib.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

#define ORVANTA_X11_FUNCTIONS(F)                                                                  \
    F(XIOErrorHandler, XSetIOErrorHandler, (XIOErrorHandler handler), (handler))                  \
    F(void, XSetIOErrorExitHandler, (Display * display, XIOErrorExitHandler handler, void* data), \
      (display, handler, data))

ORVANTA_LAZY_TABLE(ORVANTA_X11_SONAME, ORVANTA_X11_FUNCTIONS)

}  // namespace

ORVANTA_X11_FUNCTIONS(ORVANTA_LAZY_FORWARD)

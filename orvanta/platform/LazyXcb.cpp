// xcb, loaded on the first call into it: see LazyLibrary. The clipboard's selection owner talks to
// the display server through its own connection, made only when a program first offers a selection.

#include <xcb/xcb.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

#define ORVANTA_XCB_FUNCTIONS(F)                                                                            \
    F(xcb_void_cookie_t, xcb_change_property,                                                               \
      (xcb_connection_t * connection, uint8_t mode, xcb_window_t window, xcb_atom_t property,               \
       xcb_atom_t type, uint8_t format, uint32_t length, const void* data),                                 \
      (connection, mode, window, property, type, format, length, data))                                     \
    F(xcb_void_cookie_t, xcb_change_window_attributes,                                                      \
      (xcb_connection_t * connection, xcb_window_t window, uint32_t valueMask, const void* values),         \
      (connection, window, valueMask, values))                                                              \
    F(xcb_connection_t*, xcb_connect, (const char* name, int* screen), (name, screen))                      \
    F(int, xcb_connection_has_error, (xcb_connection_t * connection), (connection))                         \
    F(xcb_void_cookie_t, xcb_create_window,                                                                 \
      (xcb_connection_t * connection, uint8_t depth, xcb_window_t window, xcb_window_t parent, int16_t x,   \
       int16_t y, uint16_t width, uint16_t height, uint16_t borderWidth, uint16_t windowClass,              \
       xcb_visualid_t visual, uint32_t valueMask, const void* values),                                      \
      (connection, depth, window, parent, x, y, width, height, borderWidth, windowClass, visual, valueMask, \
       values))                                                                                             \
    F(void, xcb_disconnect, (xcb_connection_t * connection), (connection))                                  \
    F(int, xcb_flush, (xcb_connection_t * connection), (connection))                                        \
    F(uint32_t, xcb_generate_id, (xcb_connection_t * connection), (connection))                             \
    F(int, xcb_get_file_descriptor, (xcb_connection_t * connection), (connection))                          \
    F(uint32_t, xcb_get_maximum_request_length, (xcb_connection_t * connection), (connection))              \
    F(xcb_get_property_cookie_t, xcb_get_property,                                                          \
      (xcb_connection_t * connection, uint8_t remove, xcb_window_t window, xcb_atom_t property,             \
       xcb_atom_t type, uint32_t offset, uint32_t length),                                                  \
      (connection, remove, window, property, type, offset, length))                                         \
    F(xcb_get_property_reply_t*, xcb_get_property_reply,                                                    \
      (xcb_connection_t * connection, xcb_get_property_cookie_t cookie, xcb_generic_error_t * *error),      \
      (connection, cookie, error))                                                                          \
    F(void*, xcb_get_property_value, (const xcb_get_property_reply_t* reply), (reply))                      \
    F(int, xcb_get_property_value_length, (const xcb_get_property_reply_t* reply), (reply))                 \
    F(xcb_get_selection_owner_cookie_t, xcb_get_selection_owner,                                            \
      (xcb_connection_t * connection, xcb_atom_t selection), (connection, selection))                       \
    F(xcb_get_selection_owner_reply_t*, xcb_get_selection_owner_reply,                                      \
      (xcb_connection_t * connection, xcb_get_selection_owner_cookie_t cookie,                              \
       xcb_generic_error_t * *error),                                                                       \
      (connection, cookie, error))                                                                          \
    F(const xcb_setup_t*, xcb_get_setup, (xcb_connection_t * connection), (connection))                     \
    F(xcb_intern_atom_cookie_t, xcb_intern_atom,                                                            \
      (xcb_connection_t * connection, uint8_t onlyIfExists, uint16_t nameLen, const char* name),            \
      (connection, onlyIfExists, nameLen, name))                                                            \
    F(xcb_intern_atom_reply_t*, xcb_intern_atom_reply,                                                      \
      (xcb_connection_t * connection, xcb_intern_atom_cookie_t cookie, xcb_generic_error_t * *error),       \
      (connection, cookie, error))                                                                          \
    F(xcb_generic_event_t*, xcb_poll_for_event, (xcb_connection_t * connection), (connection))              \
    F(xcb_void_cookie_t, xcb_send_event,                                                                    \
      (xcb_connection_t * connection, uint8_t propagate, xcb_window_t destination, uint32_t eventMask,      \
       const char* event),                                                                                  \
      (connection, propagate, destination, eventMask, event))                                               \
    F(xcb_void_cookie_t, xcb_set_selection_owner,                                                           \
      (xcb_connection_t * connection, xcb_window_t owner, xcb_atom_t selection, xcb_timestamp_t time),      \
      (connection, owner, selection, time))                                                                 \
    F(xcb_screen_iterator_t, xcb_setup_roots_iterator, (const xcb_setup_t* reply), (reply))

ORVANTA_LAZY_TABLE(ORVANTA_XCB_SONAME, ORVANTA_XCB_FUNCTIONS)

}  // namespace

ORVANTA_XCB_FUNCTIONS(ORVANTA_LAZY_FORWARD)

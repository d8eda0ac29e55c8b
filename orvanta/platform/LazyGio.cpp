// GIO with GObject and GLib beneath it, loaded on the first call into any of them: see
// LazyLibrary. GIO brings the other two, where the loader finds their functions too.

// The settings backend is declared only for code that asks for it.
#define G_SETTINGS_ENABLE_BACKEND
#include <gio/gio.h>
#include <gio/gsettingsbackend.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

#define ORVANTA_GIO_FUNCTIONS(F)                                                                             \
    F(gboolean, g_app_info_launch_default_for_uri,                                                           \
      (const char* uri, GAppLaunchContext* context, GError** error), (uri, context, error))                  \
    F(GSettingsSchemaSource*, g_settings_schema_source_get_default, (void), ())                              \
    F(GSettingsSchema*, g_settings_schema_source_lookup,                                                     \
      (GSettingsSchemaSource * source, const gchar* id, gboolean recursive), (source, id, recursive))        \
    F(gboolean, g_settings_schema_has_key, (GSettingsSchema * schema, const gchar* name), (schema, name))    \
    F(void, g_settings_schema_unref, (GSettingsSchema * schema), (schema))                                   \
    F(GSettings*, g_settings_new_full,                                                                       \
      (GSettingsSchema * schema, GSettingsBackend * backend, const gchar* path), (schema, backend, path))    \
    F(gdouble, g_settings_get_double, (GSettings * settings, const gchar* key), (settings, key))             \
    F(gboolean, g_settings_set_string, (GSettings * settings, const gchar* key, const gchar* value),         \
      (settings, key, value))                                                                                \
    F(void, g_settings_delay, (GSettings * settings), (settings))                                            \
    F(void, g_settings_apply, (GSettings * settings), (settings))                                            \
    F(void, g_settings_sync, (void), ())                                                                     \
    F(GSettingsBackend*, g_settings_backend_get_default, (void), ())                                         \
    F(const gchar*, g_type_name, (GType type), (type))                                                       \
    F(GKeyFile*, g_key_file_new, (void), ())                                                                 \
    F(void, g_key_file_free, (GKeyFile * file), (file))                                                      \
    F(gboolean, g_key_file_load_from_data,                                                                   \
      (GKeyFile * file, const gchar* data, gsize length, GKeyFileFlags flags, GError** error),               \
      (file, data, length, flags, error))                                                                    \
    F(gchar*, g_key_file_to_data, (GKeyFile * file, gsize * length, GError * *error), (file, length, error)) \
    F(gchar**, g_key_file_get_keys, (GKeyFile * file, const gchar* group, gsize* length, GError** error),    \
      (file, group, length, error))                                                                          \
    F(gboolean, g_key_file_has_key, (GKeyFile * file, const gchar* group, const gchar* key, GError** error), \
      (file, group, key, error))                                                                             \
    F(gchar*, g_key_file_get_string,                                                                         \
      (GKeyFile * file, const gchar* group, const gchar* key, GError** error), (file, group, key, error))    \
    F(void, g_key_file_set_string,                                                                           \
      (GKeyFile * file, const gchar* group, const gchar* key, const gchar* text), (file, group, key, text))  \
    F(void, g_object_unref, (gpointer object), (object))                                                     \
    F(void, g_free, (gpointer block), (block))                                                               \
    F(void, g_strfreev, (gchar * *texts), (texts))                                                           \
    F(void, g_error_free, (GError * error), (error))                                                         \
    F(gchar*, g_filename_to_uri, (const gchar* name, const gchar* host, GError** error),                     \
      (name, host, error))                                                                                   \
    F(gchar*, g_find_program_in_path, (const gchar* program), (program))                                     \
    F(gboolean, g_shell_parse_argv, (const gchar* line, gint* count, gchar*** words, GError** error),        \
      (line, count, words, error))                                                                           \
    F(gboolean, g_spawn_async,                                                                               \
      (const gchar* folder, gchar** argv, gchar** envp, GSpawnFlags flags, GSpawnChildSetupFunc setUp,       \
       gpointer data, GPid* child, GError** error),                                                          \
      (folder, argv, envp, flags, setUp, data, child, error))

ORVANTA_LAZY_TABLE(ORVANTA_GIO_SONAME, ORVANTA_GIO_FUNCTIONS)

}  // namespace

ORVANTA_GIO_FUNCTIONS(ORVANTA_LAZY_FORWARD)

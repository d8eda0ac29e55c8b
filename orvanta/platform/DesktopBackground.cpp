#define G_SETTINGS_ENABLE_BACKEND
#include "orvanta/platform/DesktopBackground.h"

#include <gio/gio.h>
#include <gio/gsettingsbackend.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace Orvanta::Platform {

namespace {

constexpr const char* kSchema = "org.gnome.desktop.background";

struct SchemaUnref {
    void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
};
using Schema = std::unique_ptr<GSettingsSchema, SchemaUnref>;

Schema backgroundSchema() {
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    return Schema(source ? g_settings_schema_source_lookup(source, kSchema, TRUE) : nullptr);
}

// $XDG_CURRENT_DESKTOP is a list such as "ubuntu:GNOME".
bool isGnomeDesktop() {
    const char* desktops = std::getenv("XDG_CURRENT_DESKTOP");
    if (!desktops || !*desktops) return true;
    const std::string list = std::string(":") + desktops + ":";
    return list.find(":GNOME:") != std::string::npos || list.find(":Unity:") != std::string::npos;
}

bool keepsSettings() {
    GSettingsBackend* backend = g_settings_backend_get_default();
    const bool keeps = std::strcmp(G_OBJECT_TYPE_NAME(backend), "GMemorySettingsBackend") != 0;
    g_object_unref(backend);
    return keeps;
}

bool usable(GSettingsSchema* schema) {
    return schema && g_settings_schema_has_key(schema, "picture-uri") &&
           g_settings_schema_has_key(schema, "picture-options") && isGnomeDesktop() && keepsSettings();
}

}  // namespace

bool canSetDesktopBackground() {
    return usable(backgroundSchema().get());
}

bool setDesktopBackground(const std::string& path) {
    Schema schema = backgroundSchema();
    if (!usable(schema.get())) return false;
    gchar* uri = g_filename_to_uri(path.c_str(), nullptr, nullptr);
    if (!uri) return false;
    GSettings* settings = g_settings_new_full(schema.get(), nullptr, nullptr);
    g_settings_delay(settings);
    g_settings_set_string(settings, "picture-uri", uri);
    // Where the desktop has a dark style it shows its own picture for it; this one is meant for both.
    if (g_settings_schema_has_key(schema.get(), "picture-uri-dark"))
        g_settings_set_string(settings, "picture-uri-dark", uri);
    g_settings_set_string(settings, "picture-options", "centered");
    g_settings_apply(settings);
    g_settings_sync();
    g_object_unref(settings);
    g_free(uri);
    return true;
}

}  // namespace Orvanta::Platform

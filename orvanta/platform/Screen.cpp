#include "orvanta/platform/Screen.h"

#include <gio/gio.h>

#include <cmath>

namespace Orvanta::Platform {

namespace {

constexpr int kBaseResolution = 96;

// The desktop's text scaling factor, or 1 when there is no such setting.
double textScalingFactor() {
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    if (!source) return 1.0;
    GSettingsSchema* schema = g_settings_schema_source_lookup(source, "org.gnome.desktop.interface", TRUE);
    if (!schema) return 1.0;
    double factor = 1.0;
    if (g_settings_schema_has_key(schema, "text-scaling-factor")) {
        GSettings* settings = g_settings_new_full(schema, nullptr, nullptr);
        factor = g_settings_get_double(settings, "text-scaling-factor");
        g_object_unref(settings);
    }
    g_settings_schema_unref(schema);
    return factor > 0 ? factor : 1.0;
}

}  // namespace

CSize screenResolution() {
    const int dpi = static_cast<int>(std::lround(kBaseResolution * textScalingFactor()));
    return CSize(dpi, dpi);
}

}  // namespace Orvanta::Platform

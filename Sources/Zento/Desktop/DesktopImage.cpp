#include "Zento/Desktop/DesktopImage.h"

#include <gio/gio.h>

#include <array>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

namespace zento {

namespace {

struct Place {
    const char* schema;
    const char* key;
};

constexpr std::array<Place, 3> kPlaces{{
    {"org.gnome.desktop.background", "picture-uri"},
    {"org.cinnamon.desktop.background", "picture-uri"},
    {"org.mate.background", "picture-filename"},
}};

struct Release {
    void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
    void operator()(GSettings* settings) const { g_object_unref(settings); }
    void operator()(gchar* text) const { g_free(text); }
};

/// A setting's text, empty where the schema is not installed: asking for it blindly would abort.
std::string setting(const Place& place)
{
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    if (source == nullptr) {
        return {};
    }
    const std::unique_ptr<GSettingsSchema, Release> schema(
        g_settings_schema_source_lookup(source, place.schema, TRUE));
    if (!schema || g_settings_schema_has_key(schema.get(), place.key) == FALSE) {
        return {};
    }
    const std::unique_ptr<GSettings, Release> settings(g_settings_new(place.schema));
    const std::unique_ptr<gchar, Release> text(g_settings_get_string(settings.get(), place.key));
    return text.get();
}

std::string localPath(const std::string& location)
{
    if (location.starts_with('/')) {
        return location;
    }
    const std::unique_ptr<gchar, Release> path(
        g_filename_from_uri(location.c_str(), nullptr, nullptr));
    return path ? path.get() : "";
}

} // namespace

std::optional<std::string> desktopImage()
{
    for (const Place& place : kPlaces) {
        std::string path = localPath(setting(place));
        std::error_code ignored;
        if (!path.empty() && std::filesystem::is_regular_file(path, ignored)) {
            return path;
        }
    }
    return std::nullopt;
}

} // namespace zento

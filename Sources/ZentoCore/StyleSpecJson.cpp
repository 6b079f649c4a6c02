#include "ZentoCore/StyleSpecJson.h"

#include "ZentoCore/Json/JsonFields.h"

#include <string_view>
#include <tuple>

namespace zento {

namespace {

/// One case of the union: the key it is stored under and its fields, keys ascending. A case of one
/// unnamed value keeps it under "_0".
template <typename Case>
struct CaseForm;

template <>
struct CaseForm<Background::LinearGradient> {
    static constexpr std::string_view kName = "linearGradient";
    static constexpr auto kFields = std::make_tuple(
        std::pair("bottom", &Background::LinearGradient::bottom),
        std::pair("top", &Background::LinearGradient::top));
};

template <>
struct CaseForm<Background::Color> {
    static constexpr std::string_view kName = "color";
    static constexpr auto kFields = std::make_tuple(std::pair("_0", &Background::Color::color));
};

template <>
struct CaseForm<Background::Image> {
    static constexpr std::string_view kName = "image";
    static constexpr auto kFields = std::make_tuple(std::pair("_0", &Background::Image::path));
};

template <>
struct CaseForm<Background::Gradient> {
    static constexpr std::string_view kName = "gradient";
    static constexpr auto kFields = std::make_tuple(
        std::pair("angle", &Background::Gradient::angle),
        std::pair("colors", &Background::Gradient::colors));
};

template <>
struct CaseForm<Background::Radial> {
    static constexpr std::string_view kName = "radial";
    static constexpr auto kFields = std::make_tuple(
        std::pair("inner", &Background::Radial::inner),
        std::pair("outer", &Background::Radial::outer));
};

template <>
struct CaseForm<Background::Blobs> {
    static constexpr std::string_view kName = "blobs";
    static constexpr auto kFields = std::make_tuple(
        std::pair("base", &Background::Blobs::base),
        std::pair("colors", &Background::Blobs::colors));
};

template <>
struct CaseForm<Background::Pattern> {
    static constexpr std::string_view kName = "pattern";
    static constexpr auto kFields = std::make_tuple(
        std::pair("ink", &Background::Pattern::ink),
        std::pair("kind", &Background::Pattern::kind),
        std::pair("paper", &Background::Pattern::paper),
        std::pair("scale", &Background::Pattern::scale));
};

/// Calls `visit(key, member)` for every field of a case.
template <typename Case, typename Visit>
void forEachField(Visit visit)
{
    std::apply(
        [&](const auto&... fields) { (visit(fields.first, fields.second), ...); },
        CaseForm<Case>::kFields);
}

/// Adds to `count` and sets `background` if the object holds this case.
template <typename Case>
void decodeCase(const JsonObject& object, StyleSpec::Background& background, int& count)
{
    const auto element = object.find(CaseForm<Case>::kName);
    if (!element) {
        return;
    }
    ++count;
    const JsonObject fields(*element);
    Case value;
    forEachField<Case>([&](auto key, auto member) { fields.required(key, value.*member); });
    background = std::move(value);
}

template <typename... Cases>
void decodeCases(const JsonObject& object, std::variant<Cases...>& background)
{
    int count = 0;
    (decodeCase<Cases>(object, background, count), ...);
    if (count != 1) {
        throw Error(ErrorCode::kUndecodable, "Invalid number of keys found, expected one.");
    }
}

} // namespace

void encode(JsonWriter& json, const StyleSpec::Background& background)
{
    json.beginObject();
    std::visit(
        [&]<typename Case>(const Case& value) {
            json.key(CaseForm<Case>::kName);
            json.beginObject();
            forEachField<Case>([&](auto key, auto member) { field(json, key, value.*member); });
            json.endObject();
        },
        background);
    json.endObject();
}

void decode(const JsonObject& object, StyleSpec::Background& background)
{
    decodeCases(object, background);
}

void encode(JsonWriter& json, const StyleSpec& style)
{
    json.beginObject();
    field(json, "background", style.background);
    field(json, "cornerRadius", style.cornerRadius);
    field(json, "cursorAutoHide", style.cursorAutoHide);
    field(json, "cursorScale", style.cursorScale);
    field(json, "cursorStyle", style.cursorStyle);
    field(json, "fillsCanvas", style.fillsCanvas);
    field(json, "motionBlur", style.motionBlur);
    field(json, "padding", style.padding);
    field(json, "shadowOffsetY", style.shadowOffsetY);
    field(json, "shadowOpacity", style.shadowOpacity);
    field(json, "shadowRadius", style.shadowRadius);
    json.endObject();
}

void decode(const JsonObject& object, StyleSpec& style)
{
    object.orDefault("background", style.background);
    object.orDefault("padding", style.padding);
    object.orDefault("cornerRadius", style.cornerRadius);
    object.orDefault("shadowOpacity", style.shadowOpacity);
    object.orDefault("shadowRadius", style.shadowRadius);
    object.orDefault("shadowOffsetY", style.shadowOffsetY);
    object.orDefault("cursorScale", style.cursorScale);
    object.orDefault("cursorAutoHide", style.cursorAutoHide);
    object.orDefault("motionBlur", style.motionBlur);
    object.orDefault("fillsCanvas", style.fillsCanvas);
    object.orDefault("cursorStyle", style.cursorStyle);
}

} // namespace zento

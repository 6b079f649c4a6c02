#include "ZentoCore/EditPlan.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/Json/JsonReader.h"
#include "ZentoCore/Json/JsonWriter.h"
#include "ZentoCore/SessionBundle.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

namespace zento {
namespace {

std::string lineOf(double number)
{
    JsonWriter json(JsonWriter::Form::Line);
    json.value(number);
    return json.takeText();
}

TEST(JsonNumbers, areTheShortestThatReadBack)
{
    struct Case {
        double number;
        std::string text;
    };
    for (const auto& [number, text] : std::initializer_list<Case>{
             {118, "118"},
             {371.5, "371.5"},
             {3.2104, "3.2104"},
             {1e9, "1000000000"},
             {-0.0, "-0"},
             {0.1 + 0.2, "0.30000000000000004"},
             {0.0001, "0.0001"},
             {0.00001, "1e-05"},
             {1e300, "1e+300"}}) {
        EXPECT_EQ(lineOf(number), text);
    }
    EXPECT_THROW(lineOf(std::numeric_limits<double>::infinity()), Error);
}

TEST(JsonNumbers, everyDoubleSurvivesTheRoundTrip)
{
    std::mt19937_64 random(7);
    simdjson::dom::parser parser;
    for (int i = 0; i < 20000; ++i) {
        const auto number = std::bit_cast<double>(random());
        if (!std::isfinite(number)) {
            continue;
        }
        double back = 0;
        decodeValue(parseJson(parser, lineOf(number)), back);
        ASSERT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(number));
    }
}

TEST(JsonText, escapesByFormAndIsAlwaysWellFormed)
{
    const auto written = [](JsonWriter::Form form, std::string_view text) {
        JsonWriter json(form);
        json.value(text);
        return json.takeText();
    };
    EXPECT_EQ(written(JsonWriter::Form::Document, "a/b"), R"("a\/b")");
    EXPECT_EQ(written(JsonWriter::Form::Line, "a/b"), R"("a/b")");
    EXPECT_EQ(written(JsonWriter::Form::Line, "\"\\\n\t\x01⌘"), "\"\\\"\\\\\\n\\t\\u0001⌘\"");
    EXPECT_EQ(
        written(
            JsonWriter::Form::Line,
            "\xff"
            "a\xc3"),
        "\"\xEF\xBF\xBD"
        "a\xEF\xBF\xBD\"");
}

TEST(JsonForms, documentIsPrettyWithSortedKeysAndLeavesAbsentKeysOut)
{
    SessionMeta meta;
    meta.pixelWidth = 1920;
    meta.pixelHeight = 1080;
    meta.scaleFactor = 1;
    meta.nominalFPS = 60;
    meta.duration = 12.25;
    meta.title = "A/B";
    EXPECT_EQ(encodeMeta(meta), R"({
  "duration": 12.25,
  "nominalFPS": 60,
  "pixelHeight": 1080,
  "pixelWidth": 1920,
  "scaleFactor": 1,
  "title": "A\/B"
})");
    EXPECT_EQ(decodeMeta(encodeMeta(meta)), meta);
}

TEST(JsonReading, toleratesWhatItShouldAndNamesWhatItCannotUse)
{
    struct Case {
        std::string name;
        std::string json;
        std::string complaint; // empty: it loads
    };
    const std::string rest = R"("pixelHeight":1080,"scaleFactor":1,"nominalFPS":60,"duration":1)";
    for (const auto& [name, json, complaint] : std::initializer_list<Case>{
             {"integer with a fraction of zero", R"({"pixelWidth":1920.0,)" + rest + "}", ""},
             {"unknown key", R"({"pixelWidth":1920,"later":{"a":[1]},)" + rest + "}", ""},
             {"null is a missing key", R"({"pixelWidth":1,"title":null,)" + rest + "}", ""},
             {"null for a required key", R"({"pixelWidth":null,)" + rest + "}", "\"pixelWidth\""},
             {"missing key", "{" + rest + "}", "\"pixelWidth\" is missing"},
             {"wrong type", R"({"pixelWidth":"wide",)" + rest + "}", "a number"},
             {"fraction", R"({"pixelWidth":1.5,)" + rest + "}", "an integer"},
             {"out of range", R"({"pixelWidth":1e300,)" + rest + "}", "an integer"},
             {"torn", R"({"pixelWidth":1920,)", "not valid JSON"},
             {"two documents", "{}{}", "not valid JSON"},
             {"a list", "[]", "an object"},
             {"nothing", "", "not valid JSON"},
             {"not UTF-8", "{\"title\":\"\xff\"}", "not valid JSON"}}) {
        SCOPED_TRACE(name);
        try {
            decodeMeta(json);
            EXPECT_EQ(complaint, "");
        } catch (const Error& error) {
            EXPECT_NE(complaint, "");
            EXPECT_NE(std::string(error.what()).find(complaint), std::string::npos) << error.what();
        }
    }
}

} // namespace
} // namespace zento

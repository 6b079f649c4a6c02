#include "ZentoCore/BackgroundCatalog.h"
#include "ZentoCore/KeyCombo.h"

#include <gtest/gtest.h>

#include <set>

namespace zento {
namespace {

TEST(Catalog, groupsCoverTheTableInOrder)
{
    using namespace BackgroundCatalog;
    EXPECT_EQ(all().size(), 62U);
    EXPECT_EQ(duos().front().id, "indigo-night");
    EXPECT_EQ(duos().back().id, "ember");
    EXPECT_EQ(trios().front().id, "vaporwave");
    EXPECT_EQ(trios().back().id, "berry");
    EXPECT_EQ(meshes().front().id, "mesh-purple");
    EXPECT_EQ(meshes().back().id, "mesh-teal");
    EXPECT_EQ(radials().front().id, "halo");
    EXPECT_EQ(radials().back().id, "solar");
    EXPECT_EQ(patterns().front().name, "Ink Dots");
    EXPECT_EQ(patterns().back().name, "Paper Dots");
    EXPECT_EQ(solids().front().id, "black");
    EXPECT_EQ(solids().back().id, "white");
    EXPECT_EQ(duos()[9].name, "Midnight Teal");
}

TEST(Catalog, theFirstOfTwoNamesakesWins)
{
    for (const char* id : {"citrus", "lagoon", "flamingo"}) {
        const auto* found = BackgroundCatalog::preset(id);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(std::get<Background::Gradient>(found->background).colors.size(), 3U) << id;
    }
    EXPECT_EQ(BackgroundCatalog::preset("none"), nullptr);
}

TEST(KeyCombos, readWell)
{
    EXPECT_EQ((KeyCombo{"k", true, true, false, false}.display()), "⇧⌘K");
    EXPECT_EQ((KeyCombo{"space", true, true, true, true}.display()), "⌃⌥⇧⌘Space");
    EXPECT_EQ((KeyCombo{"f5", false, false, false, false}.display()), "F5");
    EXPECT_EQ((KeyCombo{"left", false, false, true, true}.carbonModifiers()), 6144U);
}

TEST(KeyCombos, namesAndCodesAreOneToOne)
{
    std::set<std::string> names;
    for (int code = 0; code < 128; ++code) {
        const auto name = keyName(code);
        if (name) {
            EXPECT_TRUE(names.insert(*name).second) << *name;
            EXPECT_EQ(KeyCombo{*name}.carbonKeyCode(), code) << *name;
        }
    }
    EXPECT_EQ(names.size(), 68U);
    EXPECT_FALSE(keyName(10).has_value());
    EXPECT_FALSE(keyName(52).has_value());
    EXPECT_FALSE(KeyCombo{"hyper"}.carbonKeyCode().has_value());
}

} // namespace
} // namespace zento

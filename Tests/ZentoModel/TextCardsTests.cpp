#include "TestSupport/TemporaryFolder.h"
#include "Zento/Model/PlanSources.h"
#include "Zento/Model/TextCards.h"
#include "ZentoCore/FileIO.h"

#include <gtest/gtest.h>

namespace zento {
namespace {

SessionMeta metaOf(std::optional<std::string> appName, std::optional<std::string> title = {})
{
    return {.appName = std::move(appName), .title = std::move(title)};
}

TEST(TextCards, theTitleIsTheFirstThingKnown)
{
    struct Case {
        const char* name;
        const char* setting;
        std::optional<std::string> copyTitle;
        SessionMeta meta;
        const char* title;
        std::optional<std::string> subtitle;
    };
    for (const auto& [name, setting, copyTitle, meta, title, subtitle] :
         std::initializer_list<Case>{
             {"the setting", " Hello \n", "Copy", metaOf("App", "Meta"), "Hello", "App"},
             {"the copy", " ", " Copy\t", metaOf("App", "Meta"), "Copy", "App"},
             {"the recording's name", "", "  ", metaOf("App", "Meta"), "Meta", "App"},
             {"an empty name", "", {}, metaOf(" App ", ""), "App", {}},
             {"the application", "", {}, metaOf(" App "), "App", {}},
             {"nothing", "", {}, metaOf({}), "Demo", {}},
             {"the setting is the application", "App", {}, metaOf("App "), "App", {}}}) {
        AppSettings settings;
        settings.titleCard = true;
        settings.titleCardText = setting;
        std::optional<VideoCopy> copy;
        if (copyTitle) {
            copy = VideoCopy{*copyTitle, "a caption", "a post", true};
        }
        const FilmCards cards = currentCards(settings, meta, copy);
        EXPECT_EQ(cards.title->title, title) << name;
        EXPECT_EQ(cards.title->subtitle, subtitle) << name;
        EXPECT_FALSE(cards.end) << name;
    }
}

TEST(TextCards, theEndCardStaysALittleLonger)
{
    AppSettings settings;
    EXPECT_EQ(currentCards(settings, metaOf("App"), {}), FilmCards{});
    settings.titleCard = true;
    settings.endCard = true;
    settings.cardSeconds = 3;
    settings.cardDesign = "glow";
    settings.cardAccentHex = "#102030";
    const FilmCards cards = currentCards(settings, metaOf(" App"), {});
    EXPECT_EQ(cards.title, (TextCard{"App", {}, 3, "glow", "#102030"}));
    EXPECT_EQ(cards.end, (TextCard{"Try it today", "App", 3.2, "glow", "#102030"}));
    settings.endCardHeading = "\n";
    settings.endCardLine = " example.org ";
    const FilmCards others = currentCards(settings, metaOf({}), {});
    EXPECT_EQ(others.end->title, "Thanks for watching");
    EXPECT_EQ(others.end->subtitle, "example.org");
}

TEST(TextCards, theCopyIsReadWhereItIsWhole)
{
    const test::TemporaryFolder folder;
    SessionBundle bundle;
    bundle.url = folder.path();
    EXPECT_FALSE(loadVideoCopy(bundle));
    writeFile(bundle.copyURL(), R"({"title":"T","caption":"C","socialPost":"S"})");
    EXPECT_FALSE(loadVideoCopy(bundle)) << "a key is missing";
    writeFile(
        bundle.copyURL(),
        R"({"title":"T","caption":"C","socialPost":"S","generatedByModel":true})");
    EXPECT_EQ(loadVideoCopy(bundle), (VideoCopy{"T", "C", "S", true}));
}

} // namespace
} // namespace zento

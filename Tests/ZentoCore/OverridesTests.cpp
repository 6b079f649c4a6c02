#include "ZentoCore/Error.h"
#include "ZentoCore/Overrides.h"

#include <gtest/gtest.h>

namespace zento {
namespace {

TEST(ZoomIdentity, takesTheNearestEditThenTests)
{
    Overrides overrides;
    overrides.zoomEdits = {{10, {}, {}, 2}};
    EXPECT_TRUE(overrides.edit(10.25, 0.25).has_value());
    EXPECT_FALSE(overrides.edit(10.36).has_value());
    overrides.zoomEdits = {{9.9, {}, {}, 1}, {10.2, {}, {}, 2}};
    EXPECT_EQ(overrides.edit(10)->sourceTime, 9.9);
    overrides.zoomEdits = {{9.75, {}, {}, 1}, {10.25, {}, {}, 2}};
    EXPECT_EQ(overrides.edit(10)->sourceTime, 9.75); // the earlier on a tie
    EXPECT_FALSE(overrides.edit(10, 0.1).has_value());
    overrides.disabledZoomSourceTimes = {4, 5};
    EXPECT_TRUE(overrides.zoomDisabled(4.75, 0.25));
    EXPECT_FALSE(overrides.zoomDisabled(6));
    EXPECT_FALSE(overrides.zoomDeleted(4));
}

TEST(SavedOverrides, turnTheTrimIntoRanges)
{
    SavedOverrides saved;
    saved.trimStart = 0.05;
    saved.trimEnd = 10 - 0.05;
    EXPECT_TRUE(saved.overrides(10).removedRanges.empty());
    saved.trimStart = 0.06;
    saved.trimEnd = 9.9;
    EXPECT_EQ(
        saved.overrides(10).removedRanges,
        (std::vector<Overrides::SourceRange>{{0, 0.06}, {9.9, 11}}));
}

TEST(SavedOverrides, writeOnlyWhatIsSet)
{
    SavedOverrides saved;
    EXPECT_EQ(encodeSavedOverrides(saved), "{\n  \"disabledZooms\": []\n}");
    saved.trimStart = 0.04;
    EXPECT_EQ(decodeSavedOverrides(encodeSavedOverrides(saved)), SavedOverrides{});
    saved.trimStart = 1;
    saved.musicEnd = 2;
    saved.disabledZooms = {1, 2};
    saved.zoomEdits = {{1, 2, {}, 1.5}, {3, {}, 0.4, {}}};
    saved.addedZooms = {{1, 2, 3, 4}};
    saved.deletedZooms = {7};
    EXPECT_EQ(decodeSavedOverrides(encodeSavedOverrides(saved)), saved);
}

TEST(OverrideDocuments, needTheirRequiredKeysAndNoContradiction)
{
    EXPECT_TRUE(decodeOverrides("{}").isEmpty());
    EXPECT_THROW(decodeSavedOverrides("{}"), Error);
    EXPECT_NO_THROW(decodeSavedOverrides(R"({"disabledZooms":[]})"));
    EXPECT_THROW(decodeOverrides(R"({"zoomEdits":[{"hold":1}]})"), Error);
    const std::string twice = R"("zoomEdits":[{"sourceTime":1},{"sourceTime":1.0}])";
    EXPECT_EQ(decodeOverrides("{" + twice + "}").zoomEdits.size(), 2U); // applied in turn
    EXPECT_THROW(decodeSavedOverrides(R"({"disabledZooms":[],)" + twice + "}"), Error);
    Overrides all;
    all.disabledZoomSourceTimes = {1};
    all.removedRanges = {{2, 1}};
    all.zoomEdits = {{1, 2, 3, 4}};
    all.addedZooms = {{1, 2, 3, 4}};
    all.deletedZoomSourceTimes = {5};
    EXPECT_EQ(decodeOverrides(encodeOverrides(all)), all);
}

} // namespace
} // namespace zento

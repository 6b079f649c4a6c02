#include "Zento/Timeline/ZoomEditing.h"

#include <gtest/gtest.h>

#include <functional>
#include <string_view>

namespace zento {
namespace {

/// Zooms added at 5 and 9, the one at 5 moved to 6; planned ones at 20 (edited, off) and 30.
SavedOverrides someEdits()
{
    SavedOverrides edits;
    edits.addedZooms = {
        {.id = 5, .sourceTime = 6, .hold = 1.6, .level = 1.35},
        {.id = 9, .sourceTime = 9, .hold = 1.6, .level = 1.35}};
    edits.zoomEdits = {{.sourceTime = 20, .hold = 3.0}};
    edits.disabledZooms = {20};
    edits.deletedZooms = {40};
    edits.trimStart = 2;
    return edits;
}

TEST(ZoomEditingTest, EachOperationChangesWhatItNames)
{
    struct Case {
        const char* name;
        std::function<EditStep(SavedOverrides)> edit;
        std::function<void(SavedOverrides&)> expected;
        std::string_view undoName;
    };
    const auto nothing = [](SavedOverrides&) {};
    const Case cases[] = {
        {"off",
         [](auto e) { return toggleZoom(e, 5); },
         [](auto& e) { e.disabledZooms = {5, 20}; },
         "Zoom"},
        {"on again",
         [](auto e) { return toggleZoom(e, 20); },
         [](auto& e) { e.disabledZooms = {}; },
         "Zoom"},
        {"an added one moved",
         [](auto e) { return moveZoom(e, 5, 7.5); },
         [](auto& e) { e.addedZooms[0].sourceTime = 7.5; },
         "Zoom"},
        {"a planned one moved before the beginning",
         [](auto e) { return moveZoom(e, 20, -3); },
         [](auto& e) { e.zoomEdits[0].newSourceTime = 0; },
         "Zoom Edit"},
        {"the first edit of a zoom, kept in order",
         [](auto e) { return moveZoom(e, 12.5, 13); },
         [](auto& e) {
             e.zoomEdits.insert(e.zoomEdits.begin(), {.sourceTime = 12.5, .newSourceTime = 13});
         },
         "Zoom Edit"},
        {"stretched to less than there may be",
         [](auto e) { return resizeZoom(e, 20, 0.1); },
         [](auto& e) { e.zoomEdits[0].hold = 0.4; },
         "Zoom Edit"},
        {"an added one stretched",
         [](auto e) { return resizeZoom(e, 9, 4); },
         [](auto& e) { e.addedZooms[1].hold = 4; },
         "Zoom"},
        {"a level",
         [](auto e) { return setZoomLevel(e, 20, 2.1); },
         [](auto& e) { e.zoomEdits[0].level = 2.1; },
         "Zoom Edit"},
        {"added",
         [](auto e) { return addZoom(e, 1.5, 1.5); },
         [](auto& e) {
             e.addedZooms.push_back({.id = 1.5, .sourceTime = 1.5, .hold = 1.6, .level = 1.5});
         },
         "Zoom"},
        {"an added one deleted",
         [](auto e) { return deleteZoom(e, 5); },
         [](auto& e) { e.addedZooms.erase(e.addedZooms.begin()); },
         "Zoom"},
        {"a planned one deleted with all that was said of it",
         [](auto e) { return deleteZoom(e, 20); },
         [](auto& e) {
             e.zoomEdits = {};
             e.disabledZooms = {};
             e.deletedZooms = {20, 40};
         },
         "Delete Zoom"},
        {"deleted twice", [](auto e) { return deleteZoom(e, 40); }, nothing, "Delete Zoom"},
        {"reset",
         [](auto e) { return resetZoom(e, 20); },
         [](auto& e) { e.zoomEdits = {}; },
         "Zoom Edit"},
        {"an added one reset goes",
         [](auto e) { return resetZoom(e, 9); },
         [](auto& e) { e.addedZooms.pop_back(); },
         "Zoom"},
        {"restored",
         [](auto e) { return restoreDeletedZooms(e); },
         [](auto& e) { e.deletedZooms = {}; },
         "Delete Zoom"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EditStep expected = {someEdits(), c.undoName};
        c.expected(expected.edits);
        const EditStep step = c.edit(someEdits());
        EXPECT_EQ(step, expected);
        // What is saved must be read again.
        EXPECT_EQ(decodeSavedOverrides(encodeSavedOverrides(step.edits)), step.edits);
    }
}

TEST(ZoomEditingTest, TwoZoomsAtOneTimeStayApart)
{
    SavedOverrides edits = addZoom({}, 5, 1.5).edits;
    edits = moveZoom(edits, 5, 8).edits;
    edits = addZoom(edits, 5, 1.5).edits;
    ASSERT_EQ(edits.addedZooms.size(), 2U);
    EXPECT_EQ(edits.addedZooms[1].sourceTime, 5);
    EXPECT_EQ(deleteZoom(edits, edits.addedZooms[1].id).edits.addedZooms.size(), 1U);
}

} // namespace
} // namespace zento

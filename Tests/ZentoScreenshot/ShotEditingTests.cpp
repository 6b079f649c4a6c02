#include "Zento/Screenshot/ShotEditing.h"
#include "ZentoRender/Screenshot/AnnotationRenderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zento {
namespace {

using Kind = Annotation::Kind;

constexpr Vec2 kImage{800, 600};
constexpr double kTolerance = 6;

void gesture(ShotEditing& editing, std::string_view tool, const std::vector<Vec2>& path)
{
    editing.setTool(*editorTool(tool));
    editing.press(path.front(), kTolerance);
    for (std::size_t i = 1; i < path.size(); ++i)
        editing.drag(path[i]);
    editing.release(path.back());
}

/// Three marks, one on the other in part.
ShotEditing marked()
{
    ShotEditing editing(kImage);
    gesture(editing, "box", {{100, 100}, {300, 300}});
    gesture(editing, "line", {{200, 200}, {500, 200}});
    gesture(editing, "badge", {{600, 400}});
    editing.setTool(Tool::Select{});
    return editing;
}

int marks(const ShotEditing& editing)
{
    return static_cast<int>(editing.document().annotations.size());
}

int steps(ShotEditing editing)
{
    int count = 0;
    for (; editing.canUndo(); editing.undo())
        ++count;
    return count;
}

TEST(EditorTools, AreKnownByIdAndKeyAlike)
{
    EXPECT_EQ(editorTools().front().id, "select");
    EXPECT_EQ(editorTools().back().id, "crop");
    std::string keys;
    for (const EditorToolEntry& one : editorTools()) {
        EXPECT_EQ(editorTool(one.id), one.tool) << one.id;
        EXPECT_EQ(editorTool(one.key), one.tool) << one.id;
        EXPECT_EQ(entry(one.tool).id, one.id);
        keys += one.key;
    }
    EXPECT_EQ(keys, "valrohpbsntc");
    EXPECT_EQ(editorTool('x'), std::nullopt);
}

TEST(ShotEditing, MakesAMarkOfWhatIsLargeEnough)
{
    struct Case {
        std::string name;
        std::string tool;
        std::vector<Vec2> path;
        int expected;
    };
    const std::vector<Case> cases{
        {"a drag of four pixels", "arrow", {{10, 10}, {14, 10}}, 1},
        {"a drag of three pixels", "arrow", {{10, 10}, {13, 10}}, 0},
        {"there and back again", "box", {{10, 10}, {90, 90}, {11, 11}}, 0},
        {"a click", "ellipse", {{10, 10}}, 0},
        {"a closed loop of the pen", "pen", {{10, 10}, {60, 10}, {60, 60}, {10, 10}}, 1},
        {"a trembling pen", "pen", {{10, 10}, {11, 11}, {12, 10}}, 0},
        {"a badge", "badge", {{10, 10}}, 1},
        {"a badge after a drag", "badge", {{10, 10}, {50, 50}}, 1},
        {"a text waits for its words", "text", {{10, 10}}, 0},
    };
    for (const Case& one : cases) {
        ShotEditing editing(kImage);
        gesture(editing, one.tool, one.path);
        EXPECT_EQ(marks(editing), one.expected) << one.name;
        EXPECT_EQ(steps(editing), one.expected) << one.name << ": steps of undo";
        EXPECT_FALSE(editing.isDragging()) << one.name;
        if (one.expected == 1) {
            const Annotation& mark = editing.document().annotations.front();
            EXPECT_EQ(name(mark.kind), one.tool) << one.name;
            const Vec2 place = isPoint(mark.kind) ? one.path.back() : one.path.front();
            EXPECT_EQ(mark.start, place) << one.name;
        }
    }
}

TEST(ShotEditing, ShowsADraftBeforeItIsAMark)
{
    ShotEditing editing(kImage);
    editing.setTool(Tool::Draw{Kind::Pen});
    editing.press({10, 10}, kTolerance);
    EXPECT_TRUE(editing.shown(ShotEditing::PendingText::Shown).annotations.empty());
    editing.drag({20, 10});
    editing.drag({30, 20});
    const ShotDocument shown = editing.shown(ShotEditing::PendingText::Shown);
    ASSERT_EQ(shown.annotations.size(), 1U);
    EXPECT_EQ(shown.annotations.front().points, (std::vector<Vec2>{{10, 10}, {20, 10}, {30, 20}}));
    EXPECT_EQ(marks(editing), 0);
    EXPECT_FALSE(editing.escape()); // gives up the drag and nothing else
    EXPECT_TRUE(editing.shown(ShotEditing::PendingText::Shown).annotations.empty());
    EXPECT_EQ(editing.tool(), EditorTool(Tool::Draw{Kind::Pen}));
    editing.release({40, 40});
    EXPECT_EQ(marks(editing), 0);
}

TEST(ShotEditing, CountsBadgesOnFromTheHighest)
{
    ShotEditing editing = marked();
    gesture(editing, "badge", {{50, 50}});
    gesture(editing, "badge", {{50, 500}});
    gesture(editing, "select", {{50, 50}});
    editing.deleteSelection();
    gesture(editing, "badge", {{700, 50}});
    std::vector<int> numbers;
    for (const Annotation& mark : editing.document().annotations)
        if (mark.kind == Kind::Badge)
            numbers.push_back(mark.number);
    EXPECT_EQ(numbers, (std::vector<int>{1, 3, 4}));
}

TEST(ShotEditing, SelectsMovesAndResizes)
{
    struct Case {
        std::string name;
        Vec2 first; // a click before; the same as `press`: none
        Vec2 press;
        Vec2 release;
        std::optional<Kind> selected;
        Vec2 start; // of that mark afterwards
        Vec2 end;
        int newSteps;
    };
    const std::vector<Case> cases{
        {"the topmost", {250, 200}, {250, 200}, {260, 230}, Kind::Line, {210, 230}, {510, 230}, 1},
        {"below it", {110, 290}, {110, 290}, {120, 290}, Kind::Box, {110, 100}, {310, 300}, 1},
        {"an end", {400, 200}, {503, 203}, {550, 100}, Kind::Line, {200, 200}, {550, 100}, 1},
        {"the start", {400, 200}, {198, 200}, {150, 90}, Kind::Line, {150, 90}, {500, 200}, 1},
        {"an end of what is not selected is not grabbed",
         {499, 203},
         {499, 203},
         {509, 203},
         Kind::Line,
         {210, 200},
         {510, 200},
         1},
        {"a corner of a box",
         {110, 290},
         {300, 300},
         {350, 350},
         Kind::Box,
         {100, 100},
         {350, 350},
         1},
        {"a badge", {600, 400}, {600, 400}, {640, 400}, Kind::Badge, {640, 400}, {640, 400}, 1},
        {"a click", {400, 200}, {400, 200}, {402, 202}, Kind::Line, {200, 200}, {500, 200}, 0},
        {"nothing", {400, 200}, {700, 50}, {710, 90}, {}, {}, {}, 0},
    };
    for (const Case& one : cases) {
        ShotEditing editing = marked();
        const int before = steps(editing);
        if (one.first != one.press)
            gesture(editing, "select", {one.first});
        gesture(editing, "select", {one.press, one.release});
        const Annotation* const mark = editing.selected();
        EXPECT_EQ(steps(editing), before + one.newSteps) << one.name;
        ASSERT_EQ(mark != nullptr, one.selected.has_value()) << one.name;
        if (mark) {
            EXPECT_EQ(mark->kind, *one.selected) << one.name;
            EXPECT_EQ(mark->start, one.start) << one.name;
            EXPECT_EQ(mark->end, one.end) << one.name;
        }
    }
}

TEST(ShotEditing, KeepsWhatCanBeRedoneThroughAClick)
{
    ShotEditing editing = marked();
    editing.undo();
    gesture(editing, "select", {{400, 200}});
    EXPECT_TRUE(editing.canRedo());
    gesture(editing, "select", {{400, 200}, {420, 220}});
    EXPECT_FALSE(editing.canRedo());
}

TEST(ShotEditing, UndoesAndRedoesEveryChange)
{
    const std::vector<std::pair<std::string, std::function<void(ShotEditing&)>>> changes{
        {"draw", [](auto& e) { gesture(e, "spotlight", {{5, 5}, {50, 50}}); }},
        {"move", [](auto& e) { gesture(e, "select", {{600, 400}, {500, 500}}); }},
        {"crop", [](auto& e) { gesture(e, "crop", {{20, 20}, {400, 400}}); }},
        {"uncrop",
         [](auto& e) {
             gesture(e, "crop", {{20, 20}, {400, 400}});
             e.uncrop();
         }},
        {"delete",
         [](auto& e) {
             gesture(e, "select", {{600, 400}});
             e.deleteSelection();
         }},
        {"colour",
         [](auto& e) {
             gesture(e, "select", {{600, 400}});
             e.setColor("#0A84FF");
         }},
        {"thickness",
         [](auto& e) {
             gesture(e, "select", {{600, 400}});
             e.setStrokeWidth(2);
         }},
        {"text",
         [](auto& e) {
             gesture(e, "text", {{50, 50}});
             e.setTextInput("שלום");
             e.commitText();
         }},
    };
    for (const auto& [label, change] : changes) {
        ShotEditing editing = marked();
        const ShotDocument before = editing.document();
        change(editing);
        const ShotDocument after = editing.document();
        const int count = steps(editing);
        EXPECT_EQ(count, steps(marked()) + (label == "uncrop" ? 2 : 1)) << label;
        while (steps(editing) > 3)
            editing.undo();
        EXPECT_TRUE(editing.document() == ShotDocument(before) || label == "uncrop") << label;
        EXPECT_EQ(editing.document().annotations.size(), before.annotations.size()) << label;
        while (editing.canRedo())
            editing.redo();
        EXPECT_EQ(editing.document(), after) << label;
        for (int i = 0; i < 20; ++i)
            editing.undo(); // and no further
        EXPECT_EQ(editing.document(), ShotDocument()) << label;
        EXPECT_EQ(editing.selected(), nullptr) << label;
    }
}

TEST(ShotEditing, LeavesNoStepWhereNothingChanges)
{
    ShotEditing editing = marked();
    const int before = steps(editing);
    editing.deleteSelection();
    editing.uncrop();
    editing.commitText();
    gesture(editing, "text", {{50, 50}});
    editing.commitText(); // empty
    gesture(editing, "select", {{600, 400}});
    editing.setColor(editing.colorHex());
    EXPECT_EQ(steps(editing), before);
    EXPECT_EQ(marks(editing), 3);
}

TEST(ShotEditing, RestylesTheSelectionAloneAndNewMarks)
{
    ShotEditing editing = marked();
    gesture(editing, "select", {{600, 400}});
    editing.setColor("#34C759");
    EXPECT_EQ(editing.selected()->colorHex, "#34C759");
    EXPECT_EQ(editing.document().annotations.front().colorHex, "#FF3B30");
    gesture(editing, "select", {{400, 200}}); // takes over the values of what is selected
    EXPECT_EQ(editing.colorHex(), "#FF3B30");
    gesture(editing, "text", {{50, 50}});
    editing.setColor("#000000"); // the text that waits, not the selection
    editing.setTextInput("a");
    gesture(editing, "select", {{400, 200}});
    EXPECT_EQ(editing.document().annotations.back().colorHex, "#000000");
    EXPECT_EQ(editing.document().annotations[1].colorHex, "#FF3B30");
}

TEST(ShotEditing, CropsWhatIsLargerThanTwentyPixels)
{
    struct Case {
        std::string name;
        Vec2 from;
        Vec2 to;
        std::optional<Rect> crop;
    };
    const std::vector<Case> cases{
        {"21 by 21", {10, 10}, {31, 31}, Rect{10, 10, 21, 21}},
        {"20 wide", {10, 10}, {30, 90}, {}},
        {"20 high", {10, 10}, {90, 30}, {}},
        {"from the lower right", {200, 200}, {100, 150}, Rect{100, 150, 100, 50}},
        {"beyond the image", {-50, -50}, {900, 900}, Rect{0, 0, 800, 600}},
        {"outside it", {-50, -50}, {-10, -10}, {}},
    };
    for (const Case& one : cases) {
        ShotEditing editing(kImage);
        gesture(editing, "crop", {one.from, one.to});
        EXPECT_EQ(editing.document().crop, one.crop) << one.name;
        EXPECT_EQ(editing.canUndo(), one.crop.has_value()) << one.name;
        EXPECT_EQ(editing.cropDraft(), std::nullopt) << one.name;
    }
}

TEST(ShotEditing, LeavesOneThingAfterTheOtherByEscape)
{
    ShotEditing editing = marked();
    gesture(editing, "select", {{400, 200}});
    gesture(editing, "text", {{50, 50}});
    editing.setTextInput("words");
    EXPECT_FALSE(editing.escape());
    EXPECT_EQ(editing.pendingText(), std::nullopt);
    EXPECT_NE(editing.selected(), nullptr);
    EXPECT_FALSE(editing.escape());
    EXPECT_EQ(editing.selected(), nullptr);
    EXPECT_NE(editing.tool(), EditorTool(Tool::Select{}));
    EXPECT_FALSE(editing.escape());
    EXPECT_EQ(editing.tool(), EditorTool(Tool::Select{}));
    EXPECT_TRUE(editing.escape());
    EXPECT_EQ(marks(editing), 3);
}

TEST(ShotEditing, GivesUpADragThatIsUndoneMeanwhile)
{
    for (const bool isUndone : {true, false}) {
        ShotEditing editing = marked();
        const ShotDocument before = editing.document();
        editing.press({600, 400}, kTolerance);
        editing.drag({100, 500});
        isUndone ? editing.undo() : static_cast<void>(editing.escape());
        editing.drag({50, 50});
        editing.release({50, 50});
        if (isUndone)
            editing.redo();
        EXPECT_EQ(editing.document(), before);
    }
}

/// What is drawn can be hit: every pixel of a stroke or a fill, but for a text, whose box lies
/// above.
TEST(ShotEditing, HitsEveryPixelThatAMarkDraws)
{
    for (const Kind kind : kAllAnnotationKinds) {
        if (kind == Kind::Text || kind == Kind::Blur || kind == Kind::Spotlight)
            continue;
        ShotEditing editing(kImage);
        gesture(editing, name(kind), {{200, 150}, {320, 260}, {420, 180}});
        Canvas canvas(800, 600);
        AnnotationRenderer::draw(editing.document().annotations, canvas, baseLineWidth(kImage.y));
        const Annotation& mark = editing.document().annotations.front();
        // An arrow's head reaches out to the side of its line.
        const double room = kind == Kind::Arrow ? 4.5 * baseLineWidth(kImage.y) : kTolerance;
        int missed = 0;
        int drawn = 0;
        for (int y = 0; y < 600; ++y)
            for (int x = 0; x < 800; ++x)
                if (canvas.pixels().row(y)[x] >> 24 > 90) {
                    ++drawn;
                    missed += mark.hitTest({x + 0.5, y + 0.5}, room, kImage.y) ? 0 : 1;
                }
        EXPECT_GT(drawn, 100) << name(kind);
        EXPECT_EQ(missed, 0) << name(kind);
    }
}

} // namespace
} // namespace zento

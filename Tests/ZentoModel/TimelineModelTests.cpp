#include "EditorFixture.h"
#include "Zento/Model/TimelineModel.h"

#include <gtest/gtest.h>

#include <optional>
#include <utility>

namespace zento {
namespace {

/// A recording of a minute, nothing of it cut, on a strip of 600 points.
class TimelineModelTest : public test::EditorTest {
protected:
    TimelineModelTest()
        : m_preview(
              std::in_place,
              LivePreview::Ports{
                  .clock = m_clock,
                  .proxies = m_files,
                  .session = *m_session,
                  .makeProxy = [](const auto& folder, const auto&, const auto&) { return folder; },
                  .makeComposer = [](auto) { return std::make_unique<test::SilentComposer>(); }})
        , m_line(*m_session, *m_preview)
    {
        AppSettings settings = m_settings.current();
        settings.cutIdle = false;
        m_settings.replace(settings);
        m_line.setWidth(600);
        open(bundle("a.zento"));
    }

    QVariantMap zoom(int index) const { return m_line.zooms().at(index).toMap(); }
    double x(int index) const { return zoom(index)["x"].toDouble(); }
    double id(int index) const { return zoom(index)["id"].toDouble(); }

    std::optional<LivePreview> m_preview;
    TimelineModel m_line;
};

TEST_F(TimelineModelTest, AZoomIsMovedStretchedAndPutBack)
{
    ASSERT_GE(m_line.zooms().size(), 2);
    const double moved = id(1);
    const double from = x(1) + 1;
    m_line.beginZoomDrag(from);
    m_line.dragZoom(from + 15);
    EXPECT_EQ(m_line.draggedZoom(), moved);
    EXPECT_EQ(m_line.zoomDragDelta(), 15);
    EXPECT_TRUE(m_session->edits().zoomEdits.empty()); // nothing is edited before the end
    m_line.cancelDrag();
    EXPECT_EQ(m_line.draggedZoom(), -1);
    m_line.endZoomDrag();
    EXPECT_TRUE(m_session->edits().zoomEdits.empty());

    const double before = zoom(1)["time"].toDouble();
    m_line.beginZoomDrag(from);
    m_line.dragZoom(from + 15);
    settle(); // a replan lands under the hand
    m_line.endZoomDrag();
    settle();
    ASSERT_EQ(m_session->edits().zoomEdits.size(), 1U);
    EXPECT_EQ(m_session->edits().zoomEdits[0].sourceTime, moved);
    EXPECT_NEAR(zoom(1)["time"].toDouble() - before, 15 * m_line.duration() / 600, 0.35);
    EXPECT_TRUE(zoom(1)["edited"].toBool());

    const double edge = x(0) + zoom(0)["width"].toDouble() - 1;
    EXPECT_TRUE(m_line.stretchesAt(edge));
    m_line.beginZoomDrag(edge);
    m_line.dragZoom(edge + 3);
    EXPECT_TRUE(m_line.isStretching());
    m_line.endZoomDrag();
    EXPECT_TRUE(m_session->edits().zoomEdits[0].hold);
}

TEST_F(TimelineModelTest, ATrimDragIsOneStepAndEscapePutsItBack)
{
    m_line.pressVideo(2);
    for (double at = 10; at <= 100; at += 10)
        m_line.dragVideo(at);
    m_line.releaseVideo();
    EXPECT_NEAR(m_line.trimStartX(), 100, 1);
    settle();
    EXPECT_NEAR(m_line.trimStartX(), 100, 1); // the strip shows what was removed
    EXPECT_LT(m_preview->duration(), m_line.duration() - 5);
    m_line.pressVideo(590);
    m_line.dragVideo(400);
    m_line.cancelDrag();
    EXPECT_EQ(m_session->edits().trimEnd, 0);
    m_session->undo();
    m_session->undo();
    EXPECT_FALSE(m_line.isTrimmed());
    EXPECT_FALSE(m_session->canUndo());
}

// Thousands of things are drawn anew for another strip: not with every move of a hand.
TEST_F(TimelineModelTest, ADragLeavesTheStripAsItIsUntilItsPlanLands)
{
    int strips = 0;
    int edits = 0;
    QObject::connect(&m_line, &TimelineModel::stripChanged, [&] { ++strips; });
    QObject::connect(&m_line, &TimelineModel::editsChanged, [&] { ++edits; });
    m_line.pressVideo(2);
    for (double at = 10; at <= 100; at += 10)
        m_line.dragVideo(at);
    EXPECT_EQ(strips, 0);
    EXPECT_GE(edits, 10);
    const QVariantList zooms = m_line.zooms();
    settle();
    EXPECT_EQ(strips, 1);
    EXPECT_EQ(m_line.zooms(), zooms); // where the trim is not applied
}

TEST_F(TimelineModelTest, APressInTheKeptStretchIsAClick)
{
    m_preview->play();
    m_line.pressVideo(300);
    m_line.dragVideo(303);
    m_line.releaseVideo();
    EXPECT_FALSE(m_preview->isPlaying());
    EXPECT_NEAR(m_line.playheadX(), 300, 0.5);
    EXPECT_EQ(m_session->edits(), SavedOverrides{});
}

TEST_F(TimelineModelTest, KeysDoWhatDragsDo)
{
    const double first = id(0);
    m_line.nudgeZoom(first, 1);
    m_line.stretchZoom(first, 1);
    m_line.setZoomLevel(first, 2.1);
    settle();
    EXPECT_EQ(zoom(0)["zoom"].toDouble(), 2.1);
    m_line.toggleZoom(first);
    settle();
    EXPECT_FALSE(zoom(0)["enabled"].toBool());
    const auto count = m_line.zooms().size();
    m_line.deleteZoom(first);
    m_preview->seek(m_line.timeAt(500));
    m_line.addZoomAtPlayhead();
    settle();
    EXPECT_EQ(m_line.deletedZooms(), 1);
    EXPECT_EQ(m_session->edits().addedZooms.size(), 1U);
    m_line.restoreDeletedZooms();
    settle();
    EXPECT_GE(m_line.zooms().size(), count);
    m_line.nudgeTrim("end", -1);
    EXPECT_TRUE(m_line.isTrimmed());
    m_line.resetTrim();
    EXPECT_FALSE(m_line.isTrimmed());
    m_line.nudgeTrim("sideways", 1);
    EXPECT_FALSE(m_line.isTrimmed());
}

} // namespace
} // namespace zento

#include "ZentoPresentation/Hand.h"
#include "ZentoPresentation/Stage.h"

#include <QImage>
#include <QQmlPropertyMap>
#include <QTest>

#include <gtest/gtest.h>

using namespace zento;

namespace {

constexpr QSize kStrip{900, 220};
constexpr auto kTimeline = "Timeline { width: 900; height: 220 }";

QObject* part(QObject* editor, const char* name)
{
    return editor->property(name).value<QObject*>();
}

} // namespace

// What is shown follows from what is, not from what was shown before.
TEST(EditorPresentation, AStripOfNothingShowsNothingOfTheFilmBefore)
{
    const auto strip = [](bool hadFilm) {
        Stage stage;
        QObject* const line = part(stage.openEditor(), "timeline");
        if (!hadFilm)
            QMetaObject::invokeMethod(line, "empty");
        stage.show(kTimeline, kStrip);
        const QImage before = stage.grab();
        QMetaObject::invokeMethod(line, "empty");
        const QImage after = stage.grab();
        EXPECT_EQ(before != after, hadFilm);
        EXPECT_TRUE(stage.complaints().isEmpty());
        return after;
    };
    EXPECT_EQ(strip(true), strip(false));
}

class TranscriptPresentation : public testing::Test {
protected:
    TranscriptPresentation()
        : m_editor(m_stage.openEditor())
        , m_pane(m_stage.show("TextPane { width: 264; height: 900 }", {300, 900}))
    {
    }

    QQuickItem* row(const char* name) { return labelled(m_pane, QString::fromUtf8(name)); }
    QQuickItem* draft() { return named(m_pane, QStringLiteral("Caption")); }
    void edit(const char* name)
    {
        QTest::mouseDClick(&m_stage.window(), Qt::LeftButton, {}, middle(row(name)));
        m_stage.settle();
    }
    /// What was asked of the editor since the last time.
    QStringList asked()
    {
        const QStringList calls = m_editor->property("calls").toStringList();
        m_editor->setProperty("calls", QStringList());
        return calls;
    }
    QStringList setWords() { return asked().filter(QStringLiteral("setWord")); }

    Stage m_stage;
    QObject* m_editor;
    QQuickItem* m_pane;
};

TEST_F(TranscriptPresentation, AClickGoesThereAndTheSpokenLineIsMarked)
{
    click(m_stage, row("Then this, 0:09.0"));
    EXPECT_EQ(asked(), QStringList{QStringLiteral("seek 9")});
    QQuickItem* const transcript =
        row("Then this, 0:09.0")->parentItem()->parentItem()->parentItem();
    EXPECT_EQ(transcript->property("spoken").toInt(), 1);
    part(m_editor, "preview")->setProperty("playheadTimeline", 20.0); // nothing is said there
    EXPECT_EQ(transcript->property("spoken").toInt(), -1);
    EXPECT_EQ(draft(), nullptr);
}

TEST_F(TranscriptPresentation, WhatIsTypedIsTheCaptionUnlessItIsGivenUp)
{
    struct Case {
        const char* name;
        const char* typed;
        int key;
        QStringList expected;
    };
    const Case cases[] = {
        {"Enter", "Put right", Qt::Key_Return, {QStringLiteral("setWord 2 Put right")}},
        {"the Tab key", "Put right", Qt::Key_Tab, {QStringLiteral("setWord 2 Put right")}},
        {"Escape", "Put right", Qt::Key_Escape, {}},
        {"the same again", "Then this", Qt::Key_Return, {}},
        {"blanks around it", " Then this ", Qt::Key_Return, {}},
        {"nothing", " ", Qt::Key_Return, {QStringLiteral("setWord 2  ")}},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        edit("Then this, 0:09.0");
        ASSERT_NE(draft(), nullptr);
        EXPECT_TRUE(draft()->hasActiveFocus());
        type(m_stage, one.typed); // over what is there, all of which is marked
        press(m_stage, one.key);
        EXPECT_EQ(draft(), nullptr);
        EXPECT_EQ(setWords(), one.expected);
        QMetaObject::invokeMethod(
            part(m_editor, "timeline"),
            "setWord",
            Q_ARG(QVariant, 2),
            Q_ARG(QVariant, QStringLiteral("Then this")));
        m_stage.settle();
        setWords();
    }
}

// The rows are those with words; the caption keeps its place in the whole transcript.
TEST_F(TranscriptPresentation, ALineWithoutWordsLeavesAndTheNextOneIsEditedInItsStead)
{
    edit("Let us begin, 0:02.0");
    press(m_stage, Qt::Key_Delete);
    press(m_stage, Qt::Key_Return);
    EXPECT_EQ(setWords(), QStringList{QStringLiteral("setWord 0 ")});
    EXPECT_EQ(row("Let us begin, 0:02.0"), nullptr);
    press(m_stage, Qt::Key_F2); // the list has the keys
    ASSERT_NE(draft(), nullptr);
    EXPECT_EQ(draft()->property("text").toString(), QStringLiteral("Then this"));
    type(m_stage, "Now");
    press(m_stage, Qt::Key_Return);
    EXPECT_EQ(setWords(), QStringList{QStringLiteral("setWord 2 Now")});
}

TEST_F(TranscriptPresentation, AnotherFieldThatIsClickedKeepsTheKeys)
{
    edit("Then this, 0:09.0");
    type(m_stage, "Put right");
    qobject_cast<QQmlPropertyMap*>(m_stage.part("settings"))
        ->insert(QStringLiteral("titleCard"), true);
    m_stage.settle();
    QQuickItem* const title = named(m_pane, QStringLiteral("Text of the title card"));
    ASSERT_NE(title, nullptr);
    click(m_stage, title);
    EXPECT_EQ(setWords(), QStringList{QStringLiteral("setWord 2 Put right")});
    EXPECT_TRUE(title->hasActiveFocus());
}

TEST_F(TranscriptPresentation, IsWorkedByKeys)
{
    QQuickItem* const list = named(m_pane, QStringLiteral("Transcript"));
    ASSERT_NE(list, nullptr);
    list->forceActiveFocus(Qt::TabFocusReason);
    press(m_stage, Qt::Key_Down);
    press(m_stage, Qt::Key_Down);
    press(m_stage, Qt::Key_Down); // at the end it stays
    press(m_stage, Qt::Key_Return);
    EXPECT_EQ(asked(), QStringList{QStringLiteral("seek 30")});
    press(m_stage, Qt::Key_F2);
    type(m_stage, "Bye");
    press(m_stage, Qt::Key_Return);
    press(m_stage, Qt::Key_Up);
    press(m_stage, Qt::Key_Return);
    EXPECT_EQ(asked(), (QStringList{QStringLiteral("setWord 3 Bye"), QStringLiteral("seek 9")}));
}

TEST_F(TranscriptPresentation, IsHeardAgainOnlyWhenItIsNotBeingHeard)
{
    click(m_stage, named(m_pane, QStringLiteral("Transcribe again")));
    EXPECT_EQ(asked(), QStringList{QStringLiteral("retranscribe")});
    QObject* const session = part(m_editor, "session");
    session->setProperty("canTranscribe", false);
    session->setProperty("isTranscribing", true);
    m_stage.settle();
    EXPECT_EQ(named(m_pane, QStringLiteral("Transcribe again")), nullptr);
    session->setProperty("isTranscribing", false); // there is no narration
    m_stage.settle();
    EXPECT_EQ(labelled(m_pane, QStringLiteral("Transcribe again")), nullptr);
}

class TimelinePresentation : public testing::Test {
protected:
    TimelinePresentation()
        : m_editor(m_stage.openEditor())
        , m_timeline(m_stage.show(kTimeline, kStrip))
    {
    }

    QStringList asked()
    {
        const QStringList calls = m_editor->property("calls").toStringList();
        m_editor->setProperty("calls", QStringList());
        return calls;
    }

    Stage m_stage;
    QObject* m_editor;
    QQuickItem* m_timeline;
};

TEST_F(TimelinePresentation, EveryGestureHasItsKey)
{
    struct Case {
        const char* control;
        int key;
        Qt::KeyboardModifiers modifiers;
        const char* call;
    };
    constexpr auto kStart = "Start of the film, 0:00.0";
    constexpr auto kEnd = "End of the film, 0:40.0";
    const Case cases[] = {
        {"Zooms", Qt::Key_Right, {}, "nudgeZoom 4 0.1"},
        {"Zooms", Qt::Key_Left, Qt::ControlModifier, "nudgeZoom 4 -1"},
        {"Zooms", Qt::Key_Right, Qt::ShiftModifier, "stretchZoom 4 0.1"},
        {"Zooms", Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier, "stretchZoom 4 -1"},
        {"Zooms", Qt::Key_Return, {}, "toggleZoom 4"},
        {"Zooms", Qt::Key_3, {}, "setZoomLevel 4 1.9"},
        {"Zooms", Qt::Key_Delete, {}, "deleteZoom 4"},
        {kStart, Qt::Key_Right, {}, "nudgeTrim start 0.1"},
        {kStart, Qt::Key_Right, Qt::ShiftModifier, "nudgeTrim move 0.1"},
        {kStart, Qt::Key_Delete, {}, "resetTrim"},
        {kEnd, Qt::Key_Left, Qt::ControlModifier, "nudgeTrim end -1"},
        {kEnd, Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier, "nudgeTrim move -1"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.call);
        QQuickItem* const control = named(m_timeline, QString::fromLatin1(one.control));
        ASSERT_NE(control, nullptr);
        control->forceActiveFocus(Qt::TabFocusReason);
        press(m_stage, one.key, one.modifiers);
        EXPECT_EQ(asked(), QStringList{QString::fromLatin1(one.call)});
    }
    named(m_timeline, QStringLiteral("Zooms"))->forceActiveFocus(Qt::TabFocusReason);
    press(m_stage, Qt::Key_Down); // the next zoom
    press(m_stage, Qt::Key_Down);
    press(m_stage, Qt::Key_Down); // at the last it stays
    press(m_stage, Qt::Key_Up);
    press(m_stage, Qt::Key_Menu);
    press(m_stage, Qt::Key_Down); // the first entry that can be chosen
    press(m_stage, Qt::Key_Return);
    EXPECT_EQ(asked(), QStringList{QStringLiteral("setZoomLevel 12 1.35")});
}

TEST_F(TimelinePresentation, ACaptionIsEditedFromItsChip)
{
    const auto editor = [&] {
        return named(m_stage.window().contentItem(), QStringLiteral("Caption"));
    };
    click(m_stage, labelled(m_timeline, QStringLiteral("Then this, 0:09.0")));
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->property("text").toString(), QStringLiteral("Then this"));
    type(m_stage, "That");
    press(m_stage, Qt::Key_Return);
    EXPECT_EQ(asked(), QStringList{QStringLiteral("setWord 2 That")});
    EXPECT_EQ(editor(), nullptr);

    named(m_timeline, QStringLiteral("Words"))->forceActiveFocus(Qt::TabFocusReason);
    press(m_stage, Qt::Key_Right);
    press(m_stage, Qt::Key_Return);
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->property("text").toString(), QStringLiteral("Thanks"));
    press(m_stage, Qt::Key_Escape);
    EXPECT_EQ(editor(), nullptr);
    EXPECT_EQ(asked(), QStringList());
}

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

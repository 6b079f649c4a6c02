#include "Zento/Presentation/App.h"
#include "Zento/Presentation/Appearance.h"
#include "Zento/Presentation/Engine.h"
#include "ZentoPresentation/Hand.h"
#include "ZentoPresentation/Stage.h"

#include <QAccessible>
#include <QQmlComponent>
#include <QQmlPropertyMap>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>

using namespace zento;

namespace {

constexpr QSize kWindow{1440, 900};

struct Screens {
    explicit Screens(Stage& stage)
        : component(&stage.engine(), QUrl(QStringLiteral("qrc:/testing/ScreenList.qml")))
        , list(component.createWithInitialProperties(
              {{QStringLiteral("app"), QVariant::fromValue(stage.app())}}))
    {
        if (list)
            all = list->property("screens").toList();
    }
    QQmlComponent component;
    std::unique_ptr<QObject> list;
    QVariantList all;
};

void forEachScreen(Stage& stage, const std::function<void(const QString&, QQuickItem*)>& look)
{
    const Screens screens(stage);
    ASSERT_FALSE(screens.all.isEmpty()) << screens.component.errorString().toStdString();
    for (const QVariant& entry : screens.all) {
        const QVariantMap screen = entry.toMap();
        auto* component = screen[QStringLiteral("component")].value<QQmlComponent*>();
        const QSize size(
            screen[QStringLiteral("width")].toInt(), screen[QStringLiteral("height")].toInt());
        stage.show(*component, size, true);
        look(screen[QStringLiteral("name")].toString(), stage.window().contentItem());
    }
    stage.clear();
}

QList<QQuickItem*> ofType(QQuickItem* root, const char* type)
{
    QList<QQuickItem*> found;
    for (QQuickItem* item : itemsBelow(root))
        if (QByteArray(item->metaObject()->className()).startsWith(type) && isShown(item))
            found.append(item);
    return found;
}

QVariantMap settingsOf(Stage& stage)
{
    auto* settings = qobject_cast<QQmlPropertyMap*>(stage.part("settings"));
    QVariantMap values;
    for (const QString& key : settings->keys())
        values[key] = settings->value(key);
    return values;
}

std::set<std::string> changed(const QVariantMap& before, const QVariantMap& after)
{
    std::set<std::string> keys;
    for (auto entry = before.cbegin(); entry != before.cend(); ++entry)
        if (after[entry.key()] != entry.value())
            keys.insert(entry.key().toStdString());
    return keys;
}

std::string describe(const QStringList& complaints)
{
    return complaints.join(QLatin1Char('\n')).toStdString();
}

} // namespace

// Whatever a binding, a picture or an icon complains of comes as a warning.
TEST(Presentation, ShowsEveryScreenWithoutAComplaint)
{
    for (const bool isDark : {true, false}) {
        Stage stage;
        appearance(stage.engine())->setDark(isDark);
        forEachScreen(stage, [&](const QString&, QQuickItem*) {});
        EXPECT_TRUE(stage.complaints().isEmpty()) << describe(stage.complaints());
    }
}

TEST(Presentation, GivesEveryControlARoleAndAName)
{
    Stage stage;
    int controls = 0;
    forEachScreen(stage, [&](const QString& screen, QQuickItem* root) {
        for (QQuickItem* item : itemsBelow(root)) {
            if (!isShown(item) || !item->activeFocusOnTab())
                continue;
            ++controls;
            QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(item);
            const std::string which = screen.toStdString() + ": " + item->metaObject()->className();
            ASSERT_NE(accessible, nullptr) << which;
            EXPECT_NE(accessible->role(), QAccessible::NoRole) << which;
            EXPECT_NE(accessible->role(), QAccessible::Client) << which;
            EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << which;
        }
    });
    EXPECT_GT(controls, 150);
}

// A target below this is missed by a hand that trembles. The colour wells and the corners of the
// webcam's place are small as pictures of what they stand for; the arrow keys reach them.
TEST(Presentation, MakesEveryTargetLargeEnough)
{
    Stage stage;
    forEachScreen(stage, [&](const QString& screen, QQuickItem* root) {
        for (QQuickItem* item : itemsBelow(root)) {
            QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(item);
            if (!isShown(item) || !accessible || accessible->role() != QAccessible::Button)
                continue;
            EXPECT_GE(item->height(), 18) << screen.toStdString();
            EXPECT_GE(item->width(), 18) << screen.toStdString();
        }
    });
}

// Every control of the panes changes settings and no two controls the same one; together with the
// export sheet they reach every setting there is.
TEST(Presentation, ReachesEverySetting)
{
    Stage stage;
    std::set<std::string> reached;
    const QStringList panes = {
        QStringLiteral("LookPane"),
        QStringLiteral("EditPane"),
        QStringLiteral("PointerPane"),
        QStringLiteral("SoundPane"),
        QStringLiteral("WebcamPane"),
        QStringLiteral("TextPane"),
        QStringLiteral("RecordPane"),
        QStringLiteral("AppPane")};
    const auto use = [&](const std::string& what, const std::function<void()>& act) {
        const QVariantMap before = settingsOf(stage);
        act();
        const std::set<std::string> keys = changed(before, settingsOf(stage));
        EXPECT_FALSE(keys.empty()) << what << " changes nothing";
        reached.insert(keys.begin(), keys.end());
    };
    const auto useAll = [&](QQuickItem* pane, const std::string& name) {
        // Before the toggles: some of them switch a slider off.
        for (QQuickItem* slider : ofType(pane, "QQuickSlider"))
            use(name + " slider "
                    + slider->parentItem()->property("label").toString().toStdString(),
                [&] {
                    slider->forceActiveFocus(Qt::TabFocusReason);
                    const bool isFull = slider->property("visualPosition").toDouble() > 0.99;
                    press(stage, isFull ? Qt::Key_Left : Qt::Key_Right);
                });
        for (QQuickItem* toggle : ofType(pane, "ToggleRow"))
            if (!toggle->property("checked").toBool())
                use(name + " toggle " + toggle->property("text").toString().toStdString(), [&] {
                    toggle->forceActiveFocus(Qt::TabFocusReason);
                    press(stage, Qt::Key_Space);
                });
        for (QQuickItem* field : ofType(pane, "TextBox"))
            if (!field->property("readOnly").toBool()
                && field->property("label").toString() != QStringLiteral("Language server"))
                use(name + " field", [&] {
                    field->forceActiveFocus(Qt::TabFocusReason);
                    type(stage, "x");
                    press(stage, Qt::Key_Return);
                });
        for (QQuickItem* group : ofType(pane, "ChoiceGroup"))
            if (group->property("label").toString() != QStringLiteral("Kind of background")
                && group->property("label").toString() != QStringLiteral("Colours"))
                use(name + " choice " + group->property("label").toString().toStdString(), [&] {
                    const int index = group->property("currentIndex").toInt();
                    const QVariantList model = group->property("model").toList();
                    const QVariant other =
                        model[(index + 1) % model.size()].toMap()[QStringLiteral("value")];
                    QMetaObject::invokeMethod(group, "picked", Q_ARG(QVariant, other));
                    stage.settle();
                });
        for (QQuickItem* toggle : ofType(pane, "ToggleRow"))
            use(name + " toggle " + toggle->property("text").toString().toStdString(),
                [&] { click(stage, toggle); });
    };
    for (const QString& pane : panes)
        useAll(
            stage.show(
                (pane + QStringLiteral(" { width: 264; height: 1100 }")).toUtf8(), {300, 1100}),
            pane.toStdString());
    stage.show(
        "MainContent { width: 1440; height: 900; Component.onCompleted: openExport() }", kWindow);
    QQuickItem* overlay = ofType(stage.window().contentItem(), "QQuickOverlay").value(0);
    ASSERT_NE(overlay, nullptr);
    useAll(overlay, "ExportSheet"); // what lies behind a sheet is out of reach

    // Devices, pictures and servers of this machine are no part of the test; `pointerOnClick` is
    // the older form of the pointer's shape and has no control, the shortcuts have rows of their
    // own.
    const std::set<std::string> elsewhere = {
        "microphoneID", "cameraID", "customBackgroundPath", "pointerOnClick", "shortcuts"};
    const QVariantMap settings = settingsOf(stage);
    for (auto entry = settings.cbegin(); entry != settings.cend(); ++entry) {
        const std::string key = entry.key().toStdString();
        EXPECT_TRUE(elsewhere.contains(key) || reached.contains(key)) << key;
    }
}

TEST(Presentation, IsWalkedThroughByTheTabKey)
{
    Stage stage;
    stage.show("MainContent { width: 1440; height: 900 }", kWindow);
    std::set<QQuickItem*> expected;
    for (QQuickItem* item : itemsBelow(stage.window().contentItem()))
        if (isShown(item) && item->activeFocusOnTab())
            expected.insert(item);
    std::set<QQuickItem*> visited;
    for (std::size_t i = 0; i < 2 * expected.size(); ++i) {
        press(stage, Qt::Key_Tab);
        // A list hands the focus on to its current row.
        for (QQuickItem* item = stage.window().activeFocusItem(); item; item = item->parentItem())
            visited.insert(item);
    }
    for (QQuickItem* item : expected)
        EXPECT_TRUE(visited.contains(item)) << item->metaObject()->className() << ' '
                                            << item->property("text").toString().toStdString();
}

TEST(Presentation, MovesAChoiceByTheArrowKeys)
{
    Stage stage;
    QQuickItem* pane = stage.show("EditPane { width: 264; height: 800 }", {300, 800});
    QQuickItem* balanced = named(pane, QStringLiteral("Balanced"));
    ASSERT_NE(balanced, nullptr);
    EXPECT_EQ(named(pane, QStringLiteral("Subtle")), nullptr) << "a second tab stop";
    balanced->forceActiveFocus(Qt::TabFocusReason);
    press(stage, Qt::Key_Right);
    EXPECT_EQ(settingsOf(stage)[QStringLiteral("cameraIntensity")], QStringLiteral("dramatic"));
    press(stage, Qt::Key_Right); // at the end it stays
    EXPECT_EQ(settingsOf(stage)[QStringLiteral("cameraIntensity")], QStringLiteral("dramatic"));
    press(stage, Qt::Key_Left);
    press(stage, Qt::Key_Left);
    EXPECT_EQ(settingsOf(stage)[QStringLiteral("cameraIntensity")], QStringLiteral("subtle"));
}

TEST(Presentation, ReadsAndWritesTheValueOfASlider)
{
    struct Case {
        const char* name;
        const char* properties;
        double value;
        const char* shown;
    };
    const Case cases[] = {
        {"a share", "to: 0.2; step: 0.005; factor: 100; decimals: 1; unit: '%'", 0.055, "5.5 %"},
        {"a whole share",
         "to: 0.2; step: 0.005; factor: 100; decimals: 1; unit: '%'",
         0.12,
         "12 %"},
        {"a level below nought", "from: -40; to: 0; step: 1; unit: 'dB'", -11, "\u221211 dB"},
        {"nought", "from: -20; to: 12; step: 0.5; decimals: 1; unit: 'dB'", 0, "0 dB"},
        {"a factor",
         "from: 1; to: 3; step: 0.05; decimals: 2; leastDecimals: 1; unit: '\u00d7'",
         1,
         "1.0 \u00d7"},
        {"a fine factor",
         "from: 1; to: 3; step: 0.05; decimals: 2; leastDecimals: 1; unit: '\u00d7'",
         1.05,
         "1.05 \u00d7"}};
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        Stage stage;
        QQuickItem* slider = stage.show(
            QByteArray(
                "ValueSlider { label: 'A'; onEdited: value => root.value = value; id: root; ")
                + one.properties + "; value: " + QByteArray::number(one.value) + " }",
            {300, 60});
        QQuickItem* field = ofType(slider, "QQuickTextField").value(0);
        ASSERT_NE(field, nullptr);
        EXPECT_EQ(field->property("text").toString(), QString::fromUtf8(one.shown));

        // What is shown, typed again, is the same value; a value out of range is brought into it.
        field->forceActiveFocus(Qt::MouseFocusReason);
        press(stage, Qt::Key_Return);
        EXPECT_DOUBLE_EQ(slider->property("value").toDouble(), one.value);
        field->forceActiveFocus(Qt::MouseFocusReason);
        type(stage, "9999");
        press(stage, Qt::Key_Return);
        EXPECT_DOUBLE_EQ(slider->property("value").toDouble(), slider->property("to").toDouble());
        field->forceActiveFocus(Qt::MouseFocusReason);
        type(stage, "nonsense");
        press(stage, Qt::Key_Return);
        EXPECT_DOUBLE_EQ(slider->property("value").toDouble(), slider->property("to").toDouble());
    }
}

TEST(Presentation, AnswersAQuestionByKeys)
{
    struct Case {
        const char* name;
        int key;
        const char* call;
    };
    for (const Case& one :
         {Case{"Enter takes what has the focus", Qt::Key_Return, "reject"},
          Case{"Escape", Qt::Key_Escape, "reject"}}) {
        SCOPED_TRACE(one.name);
        Stage stage;
        stage.show("MainContent { width: 1440; height: 900 }", kWindow);
        stage.part("question")->setProperty("isOpen", true);
        stage.settle();
        press(stage, one.key);
        EXPECT_FALSE(stage.part("question")->property("isOpen").toBool());
        EXPECT_EQ(
            stage.app()->property("calls").toStringList().last(), QString::fromLatin1(one.call));
    }
    Stage stage;
    stage.show("MainContent { width: 1440; height: 900 }", kWindow);
    stage.part("question")->setProperty("isOpen", true);
    stage.settle();
    press(stage, Qt::Key_Tab);
    press(stage, Qt::Key_Return);
    EXPECT_EQ(stage.app()->property("calls").toStringList().last(), QStringLiteral("accept"));
}

TEST(Presentation, WalksTheLibraryByKeys)
{
    Stage stage;
    QQuickItem* library = stage.show("Library { height: 800 }", {260, 800});
    QQuickItem* list = named(library, QStringLiteral("Recordings"));
    ASSERT_NE(list, nullptr);
    list->forceActiveFocus(Qt::TabFocusReason);
    QObject* model = stage.part("library");
    press(stage, Qt::Key_Down);
    press(stage, Qt::Key_Down);
    press(stage, Qt::Key_Up);
    EXPECT_EQ(model->property("selected").toString(), QStringLiteral("/recordings/1.zento"));
    press(stage, Qt::Key_Delete);
    EXPECT_EQ(
        stage.app()->property("calls").toStringList().last(),
        QStringLiteral("moveToTrash /recordings/1.zento"));
    press(stage, Qt::Key_F2);
    EXPECT_EQ(model->property("renaming").toString(), QStringLiteral("/recordings/1.zento"));
    type(stage, "Take two");
    press(stage, Qt::Key_Return);
    EXPECT_TRUE(
        stage.app()->property("calls").toStringList().contains(QStringLiteral("rename Take two")));
    EXPECT_TRUE(model->property("renaming").toString().isEmpty());
    // The list has the keys again.
    stage.app()->setProperty("calls", QStringList());
    press(stage, Qt::Key_Delete);
    EXPECT_EQ(
        stage.app()->property("calls").toStringList(),
        QStringList{QStringLiteral("moveToTrash /recordings/1.zento")});
    press(stage, Qt::Key_Down);
    EXPECT_EQ(model->property("selected").toString(), QStringLiteral("/recordings/2.zento"));
    press(stage, Qt::Key_F2);
    type(stage, "No");
    press(stage, Qt::Key_Escape);
    press(stage, Qt::Key_Up);
    EXPECT_EQ(model->property("selected").toString(), QStringLiteral("/recordings/1.zento"));
    EXPECT_FALSE(
        stage.app()->property("calls").toStringList().contains(QStringLiteral("rename No")));
}

TEST(Presentation, GivesAShortcutRowTheKeys)
{
    Stage stage;
    QQuickItem* pane = stage.show("AppPane { width: 264; height: 900 }", {300, 900});
    QQuickItem* row = named(pane, QStringLiteral("Export video"));
    ASSERT_NE(row, nullptr);
    row->forceActiveFocus(Qt::TabFocusReason);
    press(stage, Qt::Key_Return);
    EXPECT_EQ(
        stage.part("shortcuts")->property("recordingAction").toString(),
        QStringLiteral("exportVideo"));
    press(stage, Qt::Key_Tab, Qt::ControlModifier); // a key the window would take otherwise
    EXPECT_TRUE(
        stage.app()->property("calls").toStringList().last().startsWith(QStringLiteral("pressed")));
}

TEST(Presentation, OffersNoRecordingThatIsNotAllowed)
{
    Stage stage;
    stage.part("permissions")->setProperty("input", false);
    QQuickItem* library = stage.show("Library { height: 800 }", {260, 800});
    EXPECT_EQ(named(library, QStringLiteral("Record")), nullptr);
    stage.part("permissions")->setProperty("input", true);
    stage.settle();
    QQuickItem* record = named(library, QStringLiteral("Record"));
    ASSERT_NE(record, nullptr);
    click(stage, record);
    EXPECT_EQ(
        stage.app()->property("calls").toStringList().last(), QStringLiteral("recordDisplay"));
    stage.part("recording")->setProperty("phase", 2);
    stage.settle();
    click(stage, named(library, QStringLiteral("Stop")));
    EXPECT_EQ(
        stage.app()->property("calls").toStringList().last(), QStringLiteral("stopRecording"));
}

TEST(Presentation, MarksAnAreaByPointerAndByKeys)
{
    Stage stage;
    QQuickItem* picker = stage.show(
        "AreaPicker { width: 800; height: 600; property rect result; onPicked: area => result = "
        "area }",
        {800, 600});
    QTest::mousePress(&stage.window(), Qt::LeftButton, {}, {300, 250});
    QTest::mouseMove(&stage.window(), {100, 50});
    QTest::mouseRelease(&stage.window(), Qt::LeftButton, {}, {100, 50});
    EXPECT_EQ(picker->property("result").toRectF(), QRectF(100, 50, 200, 200));

    picker->forceActiveFocus();
    press(stage, Qt::Key_Right);
    press(stage, Qt::Key_Down, Qt::ShiftModifier | Qt::ControlModifier);
    press(stage, Qt::Key_Return);
    EXPECT_EQ(picker->property("result").toRectF(), QRectF(120, 50, 200, 201));
}

TEST(Presentation, FollowsTheDesktopsAppearance)
{
    struct Case {
        const char* name;
        const char* group;
        const char* key;
        QVariant value;
        const char* property;
        QVariant expected;
    };
    const Case cases[] = {
        {"dark", "org.freedesktop.appearance", "color-scheme", 1U, "dark", true},
        {"light", "org.freedesktop.appearance", "color-scheme", 2U, "dark", false},
        {"no preference keeps what is",
         "org.freedesktop.appearance",
         "color-scheme",
         0U,
         "dark",
         false},
        {"contrast",
         "org.gnome.desktop.a11y.interface",
         "high-contrast",
         true,
         "highContrast",
         true},
        {"motion",
         "org.gnome.desktop.interface",
         "enable-animations",
         true,
         "reducedMotion",
         false},
        {"text", "org.gnome.desktop.interface", "text-scaling-factor", 1.25, "textScale", 1.25},
        {"text beyond sense",
         "org.gnome.desktop.interface",
         "text-scaling-factor",
         40.0,
         "textScale",
         3.0}};
    Stage stage;
    Appearance* look = appearance(stage.engine());
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        look->apply(QString::fromLatin1(one.group), QString::fromLatin1(one.key), one.value);
        EXPECT_EQ(look->property(one.property), one.expected);
    }
}

#include "PrivateSession.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Desktop/FocusActions.h"
#include "Zento/Desktop/Notifications.h"
#include "Zento/Desktop/SearchProvider.h"
#include "Zento/Desktop/SingleInstance.h"
#include "Zento/Desktop/TrayIcon.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QSignalSpy>

#include <gmock/gmock.h>

#include <thread>

namespace zento::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BusTest : public SessionTest {
protected:
    /// Does something that blocks on an answer of this thread.
    static void elsewhere(const std::function<void()>& act)
    {
        std::atomic_bool isDone = false;
        std::thread thread([&] {
            act();
            isDone = true;
        });
        EXPECT_TRUE(eventually([&] { return isDone.load(); }));
        thread.join();
    }

    static QDBusMessage call(QDBusConnection bus, const QDBusMessage& message)
    {
        QDBusMessage reply;
        elsewhere([&] { reply = bus.call(message, QDBus::Block); });
        return reply;
    }
};

TEST_F(BusTest, ASecondStartRaisesTheFirst)
{
    using Standing = SingleInstance::Standing;
    SingleInstance first(connectToBus());
    EXPECT_FALSE(SingleInstance::tell("toggleRecording", connectToBus()));
    EXPECT_EQ(first.claim(), Standing::First);
    const QSignalSpy activated(&first, &SingleInstance::activated);
    const QSignalSpy opened(&first, &SingleInstance::openRequested);
    const QSignalSpy asked(&first, &SingleInstance::actionRequested);
    const QDBusConnection bus = connectToBus();
    elsewhere([&] {
        SingleInstance second(bus);
        EXPECT_EQ(second.claim(), Standing::Second);
        EXPECT_EQ(second.claim("/videos/a b.zento"), Standing::Second);
        EXPECT_TRUE(SingleInstance::tell("toggleRecording", bus));
    });
    EXPECT_EQ(activated.size(), 1);
    ASSERT_EQ(opened.size(), 1);
    EXPECT_EQ(opened[0][0], "/videos/a b.zento");
    ASSERT_EQ(asked.size(), 1);
    EXPECT_EQ(asked[0][0], "toggleRecording");
    first.release();
    SingleInstance third(connectToBus());
    EXPECT_EQ(third.claim(), Standing::First);
}

/// The tray's side: it takes items and shows nothing.
class FakeTray : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")

public:
    QStringList items;

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString& service) { items.append(service); }
};

TEST_F(BusTest, TheTrayShowsAMenuThatWorks)
{
    const QDBusConnection ours = connectToBus();
    QDBusConnection theirs = connectToBus();
    TrayIcon icon(ours);
    int stops = 0;
    icon.setMenu({{"Stop recording", [&] { ++stops; }}, {}, {"Quit", [] {}, false}});
    const QSignalSpy shown(&icon, &TrayIcon::isShownChanged);
    EXPECT_FALSE(icon.isShown());

    FakeTray tray; // comes later
    theirs.registerObject("/StatusNotifierWatcher", &tray, QDBusConnection::ExportAllSlots);
    ASSERT_TRUE(theirs.registerService("org.kde.StatusNotifierWatcher"));
    EXPECT_TRUE(eventually([&] { return icon.isShown(); }));
    EXPECT_THAT(tray.items, ElementsAre(ours.baseService()));

    QDBusMessage get = QDBusMessage::createMethodCall(
        ours.baseService(), "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get");
    get << "org.kde.StatusNotifierItem" << "Menu";
    const QDBusReply<QDBusVariant> menu = call(theirs, get);
    ASSERT_TRUE(menu.isValid()) << menu.error().message().toStdString();
    const QString path = menu.value().variant().value<QDBusObjectPath>().path();

    const auto ask = [&](const char* method) {
        return QDBusMessage::createMethodCall(
            ours.baseService(), path, "com.canonical.dbusmenu", method);
    };
    const QDBusMessage layout = call(theirs, ask("GetLayout") << 0 << -1 << QStringList());
    ASSERT_EQ(layout.arguments().size(), 2) << layout.errorMessage().toStdString();
    EXPECT_EQ(layout.signature(), "u(ia{sv}av)");
    const auto root = qdbus_cast<MenuLayout>(layout.arguments()[1].value<QDBusArgument>());
    ASSERT_EQ(root.children.size(), 3);
    EXPECT_EQ(root.children[0].properties["label"], "Stop recording");
    EXPECT_EQ(root.children[1].properties["type"], "separator");
    EXPECT_EQ(root.children[2].properties["enabled"], false);

    const auto click = [&](int id) {
        return ask("Event") << id << "clicked" << QVariant::fromValue(QDBusVariant(0)) << 0U;
    };
    call(theirs, click(1));
    EXPECT_EQ(stops, 1);
    call(theirs, click(2));
    call(theirs, click(99));
    EXPECT_EQ(stops, 1);

    theirs.unregisterService("org.kde.StatusNotifierWatcher");
    EXPECT_TRUE(eventually([&] { return !icon.isShown(); }));
    EXPECT_EQ(shown.size(), 2);
}

/// A notification service of one bubble.
class FakeBubbles : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    QStringList texts;
    uint replaced = 0;

public Q_SLOTS:
    uint Notify(
        const QString&,
        uint replaces,
        const QString&,
        const QString& title,
        const QString& text,
        const QStringList&,
        const QVariantMap&,
        int)
    {
        texts.append(title + ": " + text);
        replaced = replaces;
        return 7;
    }

Q_SIGNALS:
    void ActionInvoked(uint id, const QString& action);
};

TEST_F(BusTest, AClickedBubbleBringsTheApplication)
{
    QDBusConnection theirs = connectToBus();
    FakeBubbles bubbles;
    theirs.registerObject(
        "/org/freedesktop/Notifications", &bubbles, QDBusConnection::ExportAllContents);
    ASSERT_TRUE(theirs.registerService("org.freedesktop.Notifications"));
    Notifications notifications(connectToBus());
    const QSignalSpy activated(&notifications, &Notifications::activated);
    notifications.show("Zento", "a < b");
    EXPECT_TRUE(eventually([&] { return bubbles.texts.size() == 1; }));
    EXPECT_THAT(bubbles.texts, ElementsAre("Zento: a &lt; b"));
    // The number of the bubble is known once the answer is here: then a second one replaces it.
    EXPECT_TRUE(eventually([&] {
        notifications.show("Zento", "again");
        return bubbles.replaced == 7;
    }));
    Q_EMIT bubbles.ActionInvoked(8, "default");
    Q_EMIT bubbles.ActionInvoked(7, "default");
    EXPECT_TRUE(eventually([&] { return activated.size() == 1; }));
}

TEST_F(BusTest, TheSearchFindsWhatIsInTheFolder)
{
    const TemporaryFolder folder;
    const auto add = [&](const std::string& name, const SessionMeta& meta) {
        std::filesystem::create_directories(folder / name);
        writeFile(folder / (name + "/meta.json"), encodeMeta(meta));
        return QString::fromStdString((folder / name).string());
    };
    SessionMeta meta{.duration = 43.4};
    meta.title = "June invoice";
    meta.appName = "Harbour";
    const QString invoice = add("1.zento", meta);
    writeFile(folder / "1.mp4", "");
    const QString parser = add("2.zento", {.duration = 2, .title = "Parser"});
    std::filesystem::create_directories(folder / "3.zento"); // an orphan

    SearchProvider provider(folder.path(), connectToBus());
    ASSERT_TRUE(provider.start());
    const QDBusConnection shell = connectToBus();
    const auto ask = [&](const char* method, const QVariantList& arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            "dev.halvek.zento.SearchProvider",
            "/dev/halvek/zento/SearchProvider",
            "org.gnome.Shell.SearchProvider2",
            method);
        message.setArguments(arguments);
        return call(shell, message);
    };
    const auto found = [&](const QStringList& terms) {
        return ask("GetInitialResultSet", {terms}).arguments().value(0).toStringList();
    };
    EXPECT_THAT(found({"recording"}), ElementsAre(parser, invoice));
    EXPECT_THAT(found({"HARBOUR", "june"}), ElementsAre(invoice));
    EXPECT_THAT(found({"june", "parser"}), IsEmpty());
    const QDBusMessage metas = ask("GetResultMetas", {QStringList(invoice)});
    EXPECT_EQ(metas.signature(), "aa{sv}");
    const auto list = qdbus_cast<QList<QVariantMap>>(metas.arguments()[0].value<QDBusArgument>());
    ASSERT_EQ(list.size(), 1);
    EXPECT_EQ(list[0]["name"], "Zento recording — June invoice");
    EXPECT_EQ(list[0]["description"], "43s screen recording of Harbour · rendered");
    std::filesystem::remove_all(folder / "1.zento");
    EXPECT_THAT(found({"june"}), IsEmpty());

    SingleInstance application(connectToBus());
    ASSERT_EQ(application.claim(), SingleInstance::Standing::First);
    const QSignalSpy opened(&application, &SingleInstance::openRequested);
    ask("ActivateResult", {parser, QStringList(), 0U});
    EXPECT_TRUE(eventually([&] { return opened.size() == 1; }));
    EXPECT_EQ(opened[0][0], parser);
}

TEST(FocusActionsTest, AUsersCommandGoesBeforeTheBuiltIn)
{
    const TemporaryFolder folder;
    const auto command = [&](const std::string& name, const char* desktop) {
        const auto words = FocusActions::command(name, folder.path(), desktop);
        std::string line;
        for (const std::string& word : words) {
            line += (line.empty() ? "" : " ") + word;
        }
        return line;
    };
    EXPECT_EQ(
        command(" Zento Focus On\n", "ubuntu:GNOME"),
        "gsettings set org.gnome.desktop.notifications show-banners false");
    EXPECT_EQ(command("Zento Focus Off", "XFCE").substr(0, 12), "xfconf-query");
    EXPECT_EQ(command("Zento Focus On", "Sway"), "");
    EXPECT_EQ(command("Mine", "GNOME"), "");
    for (const char* name : {"Mine", "Zento Focus On"}) {
        writeFile(folder / name, "#!/bin/sh\n");
        EXPECT_EQ(command(name, "Sway"), ""); // nobody may run it yet
        std::filesystem::permissions(folder / name, std::filesystem::perms::owner_all);
        EXPECT_EQ(command(name, "GNOME"), (folder / name).string());
    }
    for (const char* name : {"", " ", ".", "..", "../../bin/true", "/bin/true"}) {
        EXPECT_EQ(command(name, "GNOME"), "") << name;
    }
    EXPECT_THAT(
        FocusActions::installed(folder.path()),
        ElementsAre("Mine", "Zento Focus Off", "Zento Focus On"));
}

} // namespace

} // namespace zento::test

#include "BusTests.moc"

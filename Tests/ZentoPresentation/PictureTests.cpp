#include "TestSupport/NumberedMovie.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Desktop/WallpaperCatalog.h"
#include "Zento/Model/PictureImage.h"
#include "Zento/Presentation/CanvasImage.h"
#include "Zento/Presentation/Gallery.h"
#include "Zento/Presentation/IconProvider.h"
#include "Zento/Presentation/PictureProvider.h"
#include "ZentoCore/BackgroundCatalog.h"
#include "ZentoCore/Error.h"
#include "ZentoPresentation/Stage.h"
#include "ZentoRender/BackgroundRenderer.h"

#include <QDir>
#include <QUrl>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace zento;

TEST(Pictures, AreDrawnByTheRenderer)
{
    const Canvas swatch = drawSwatch(QStringLiteral("background/dawn"), 60, 40);
    const Canvas film =
        BackgroundRenderer::render(BackgroundCatalog::preset("dawn")->background, 60, 40);
    EXPECT_EQ(toImage(swatch), toImage(film));
}

TEST(Pictures, ShowEveryDesignInItsAccent)
{
    QList<QImage> seen;
    for (const QVariant& design : Gallery::cardDesigns()) {
        const QString id = design.toMap()[QStringLiteral("id")].toString();
        for (const char* accent : {"7C6CFF", "84CC16"}) {
            const QImage image = toImage(drawSwatch(
                QStringLiteral("card/%1/%2/June/Harbour").arg(id, QString::fromLatin1(accent)),
                168,
                96));
            EXPECT_FALSE(
                seen.contains(image) && id != QStringLiteral("classic")
                && id != QStringLiteral("pill"))
                << id.toStdString();
            seen.append(image);
        }
    }
}

TEST(Pictures, AreNoneWhereThereIsNothingToDraw)
{
    for (const char* id : {"background/no-such", "picture//no/such.png", "nothing/at/all"})
        EXPECT_THROW(drawSwatch(QString::fromLatin1(id), 60, 40), Error) << id;
    EXPECT_THROW(drawRecording(QStringLiteral("/no/such.zento/raw"), 60, 40), Error);
}

TEST(Pictures, OfARecordingShowWhatWasRecordedOrWhatWasExported)
{
    const test::TemporaryFolder folder;
    const auto bundle = folder / "one.zento";
    std::filesystem::create_directory(bundle);
    test::writeNumberedRecording(bundle / "screen.mov", {64, 64}, test::countedFrames(0, 15, 60));
    test::writeNumberedFilm(
        folder / "one.mp4",
        {.width = 64, .height = 64, .bitRate = 200000},
        test::countedNumbers(40000, 15));
    const QString path =
        QString::fromLatin1(QUrl::toPercentEncoding(QString::fromStdString(bundle.string())));
    const auto picture = [&](const char* version) {
        return toImage(drawRecording(path + QLatin1Char('/') + QLatin1String(version), 32, 32));
    };
    EXPECT_NE(picture("raw"), picture("film?0"));
    EXPECT_EQ(picture("film?0"), picture("film?1"));
}

TEST(Pictures, HaveTheirCornersRoundedOff)
{
    const QImage image = toImage(rounded(drawSwatch(QStringLiteral("background/dawn"), 60, 40), 8));
    for (const QPoint corner : {QPoint(0, 0), QPoint(59, 0), QPoint(0, 39), QPoint(59, 39)})
        EXPECT_EQ(image.pixelColor(corner).alpha(), 0);
    EXPECT_EQ(image.pixelColor(30, 0).alpha(), 255);
    EXPECT_EQ(image.pixelColor(30, 20).alpha(), 255);
}

TEST(Icons, AreThereInTheColourAsked)
{
    IconProvider icons;
    const QStringList files = QDir(QStringLiteral(":/icons")).entryList();
    ASSERT_GT(files.size(), 60);
    for (const QString& file : files) {
        const QString name = file.section(QLatin1Char('.'), 0, 0);
        QSize size;
        const QImage image =
            icons.requestImage(name + QStringLiteral("/ff0000"), &size, QSize(40, 40));
        ASSERT_EQ(image.size(), QSize(40, 40)) << name.toStdString();
        int opaque = 0;
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 40; ++x) {
                const QColor color = image.pixelColor(x, y);
                if (color.alpha() < 255)
                    continue;
                ++opaque;
                EXPECT_TRUE(name == QStringLiteral("logo") || color == QColor(Qt::red))
                    << name.toStdString();
            }
        EXPECT_GT(opaque, 5) << name.toStdString();
    }
    QSize size;
    EXPECT_TRUE(
        icons.requestImage(QStringLiteral("no-such/ff0000"), &size, QSize(40, 40)).isNull());
}

TEST(Gallery, FindsAPresetsGroupByItsPlace)
{
    const QVariantList groups = Gallery::backgroundGroups();
    const auto all = BackgroundCatalog::all();
    int entries = 0;
    for (const QVariant& group : groups)
        entries += int(group.toMap()[QStringLiteral("entries")].toList().size());
    EXPECT_EQ(entries, int(all.size()));
    for (const BackgroundPreset& preset : all) {
        const int group = Gallery::groupOf(QString::fromStdString(preset.id));
        ASSERT_GE(group, 0) << preset.id;
        bool isThere = false;
        for (const QVariant& entry : groups[group].toMap()[QStringLiteral("entries")].toList())
            isThere |= entry.toMap()[QStringLiteral("id")].toString().toStdString() == preset.id;
        EXPECT_TRUE(isThere) << preset.id;
    }
    EXPECT_EQ(Gallery::groupOf(QStringLiteral("custom")), -1);
}

TEST(Wallpapers, AreThePicturesOfTheDesktopsFolders)
{
    const test::TemporaryFolder folder;
    namespace fs = std::filesystem;
    const fs::path own = folder.path() / "own";
    const fs::path system = folder.path() / "system";
    fs::create_directories(own);
    fs::create_directories(system / "gnome");
    for (const fs::path& file :
         {own / "mine.PNG", system / "gnome" / "blue-hills.jpg", system / "notes.xml"})
        std::ofstream(file) << "x";
    fs::create_symlink(system / "gnome" / "blue-hills.jpg", own / "again.jpg");

    const std::vector<fs::path> folders = {own, system, folder.path() / "missing"};
    std::vector<std::string> names;
    for (const Wallpaper& wallpaper : WallpaperCatalog::wallpapers(folders))
        names.push_back(wallpaper.name);
    EXPECT_EQ(names, (std::vector<std::string>{"Again", "Mine"}));
}

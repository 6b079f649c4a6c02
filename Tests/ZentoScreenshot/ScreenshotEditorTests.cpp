#include "TestSupport/TemporaryFolder.h"
#include "Zento/Screenshot/ScreenshotEditor.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoImaging/ImageFile.h"
#include "ZentoRender/Screenshot/AnnotationRenderer.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zento {
namespace {

/// Work that the test lets happen.
class HandWorker final : public Worker {
public:
    void run(std::function<void()> work, std::function<void()> done) override
    {
        m_jobs.emplace_back(std::move(work), std::move(done));
    }

    std::size_t waiting() const { return m_jobs.size(); }

    void runOne()
    {
        auto [work, done] = std::move(m_jobs.front());
        m_jobs.pop_front();
        work();
        done();
    }

    void runAll()
    {
        while (!m_jobs.empty())
            runOne();
    }

private:
    std::deque<std::pair<std::function<void()>, std::function<void()>>> m_jobs;
};

Shot shotOf(int width, int height, double scale = 1)
{
    Canvas canvas(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto at = static_cast<std::uint32_t>(x * 7 + y * 13);
            canvas.pixels().row(y)[x] = 0xFF000000U | (at * 2654435761U & 0xFFFFFFU);
        }
    return {std::make_shared<const Canvas>(std::move(canvas)), scale};
}

class Editor : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        // There are no other threads yet. NOLINTNEXTLINE(concurrency-mt-unsafe)
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        static int count = 1;
        static char name[] = "screenshot_tests";
        static char* words[] = {name, nullptr};
        static QGuiApplication application(count, words);
    }

    std::unique_ptr<ScreenshotEditor> open(Shot shot)
    {
        auto editor = std::make_unique<ScreenshotEditor>(
            std::move(shot), EditorPorts{.drawing = m_drawing, .output = m_output});
        editor->setView({900, 600}, 1);
        m_drawing.runAll();
        return editor;
    }

    static void
    gesture(ScreenshotEditor& editor, const char* tool, const std::vector<QPointF>& path)
    {
        editor.setTool(QString::fromLatin1(tool));
        editor.press(path.front());
        for (const QPointF& point : path)
            editor.drag(point);
        editor.release(path.back());
    }

    HandWorker m_drawing;
    HandWorker m_output;
};

QImage readImage(const QByteArray& png)
{
    return QImage::fromData(png, "PNG").convertToFormat(QImage::Format_ARGB32);
}

TEST_F(Editor, showsToThePixelWhatItGivesOut)
{
    const auto editor = open(shotOf(640, 400));
    gesture(*editor, "arrow", {{300, 200}, {500, 300}});
    gesture(*editor, "blur", {{400, 250}, {520, 340}});
    gesture(*editor, "spotlight", {{300, 180}, {600, 380}});
    gesture(*editor, "badge", {{450, 250}});
    gesture(*editor, "crop", {{250, 150}, {600, 400}});
    for (const char* const look : {"match", "bare", "docs", "sunset"}) {
        editor->setPresetID(QString::fromLatin1(look));
        m_drawing.runAll();
        const QImage file = readImage(editor->shotExport().makePNG());
        EXPECT_EQ(editor->picture().convertToFormat(QImage::Format_ARGB32), file) << look;
    }
}

/// A reduced view has the geometry of the file: its picture is the file's, made as small.
TEST_F(Editor, showsALargeShotAsItWillBe)
{
    const auto editor = open(shotOf(3200, 2000, 2));
    gesture(*editor, "box", {{300, 200}, {500, 300}});
    gesture(*editor, "pen", {{350, 350}, {420, 420}, {500, 380}});
    m_drawing.runAll();
    const QImage file = readImage(editor->shotExport().makePNG());
    const QImage shown = editor->picture().convertToFormat(QImage::Format_ARGB32);
    ASSERT_NEAR(shown.width(), file.width() / 2.0, 1);
    ASSERT_NEAR(shown.height(), file.height() / 2.0, 1);
    const QImage small = file.scaled(shown.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    int different = 0;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x) {
            const bool isMark = qRed(small.pixel(x, y)) > 240 && qGreen(small.pixel(x, y)) < 80;
            const bool isShown = qRed(shown.pixel(x, y)) > 240 && qGreen(shown.pixel(x, y)) < 80;
            different += isMark != isShown ? 1 : 0;
        }
    EXPECT_LT(different, 1500); // along the edges of some thousand pixels of marks
}

/// What is too large for a frame is shown and given out without one, and says so.
TEST_F(Editor, standsWithoutALookThatDoesNotFit)
{
    const auto editor = open(shotOf(40, 30000));
    editor->setPresetID(QStringLiteral("indigo"));
    EXPECT_FALSE(editor->notice().isEmpty());
    m_drawing.runAll();
    EXPECT_EQ(readImage(editor->shotExport().makePNG()).size(), QSize(40, 30000));
    const QSize shown = editor->picture().size();
    EXPECT_GT(shown.height(), 100 * shown.width()); // no margin
    editor->setPresetID(QStringLiteral("bare"));
    EXPECT_TRUE(editor->notice().isEmpty());
    editor->setPresetID(QStringLiteral("docs"));
    EXPECT_FALSE(editor->notice().isEmpty());
    gesture(*editor, "crop", {{450, 100}, {451, 120}}); // 1,000 pixels
    EXPECT_TRUE(editor->notice().isEmpty());
    EXPECT_GT(readImage(editor->shotExport().makePNG()).width(), 100);
}

TEST_F(Editor, drawsTheNewestOfWhatChangedMeanwhile)
{
    const auto editor = open(shotOf(320, 200));
    const QSignalSpy pictures(editor.get(), &ScreenshotEditor::pictureChanged);
    editor->setTool(QStringLiteral("pen"));
    editor->press({300, 200});
    for (int i = 0; i < 50; ++i)
        editor->drag(QPointF(300 + i, 200 + i));
    EXPECT_EQ(m_drawing.waiting(), 1U);
    m_drawing.runAll();
    EXPECT_EQ(pictures.count(), 2); // what was drawn first, and what it had become
    editor->release({350, 250});
    m_drawing.runAll();
    EXPECT_EQ(
        editor->picture().convertToFormat(QImage::Format_ARGB32),
        readImage(editor->shotExport().makePNG()));
}

TEST_F(Editor, mapsTheViewToTheImageAndBack)
{
    const auto styles = ShotPresets::all();
    for (const auto& crop : {std::optional<Rect>(), std::optional(Rect{100.4, 50, 300, 222.2})}) {
        for (const ShotPreset& preset : styles) {
            const ShotPlacement place({640, 400}, crop, preset.style, {500, 500}, 1);
            const Vec2 back = place.toRaw(place.toCanvas(Vec2{123, 77}));
            EXPECT_NEAR(back.x, 123, 1e-9) << preset.id;
            EXPECT_NEAR(back.y, 77, 1e-9) << preset.id;
            const Canvas image(640, 400);
            const Canvas composed =
                ShotComposer::beautify(AnnotationRenderer::flatten(image, {}, crop), preset.style);
            EXPECT_NEAR(place.picture.w / place.scale, composed.width(), 1e-6) << preset.id;
            EXPECT_NEAR(place.picture.h / place.scale, composed.height(), 1e-6) << preset.id;
            EXPECT_LE(place.picture.w, 500.001);
            EXPECT_LE(place.picture.h, 500.001);
        }
    }
}

TEST_F(Editor, writesAFileWithItsDensityAndNothingElse)
{
    const test::TemporaryFolder folder;
    const auto editor = open(shotOf(300, 200, 2));
    const auto path = folder.path() / "shot.png";
    editor->save(QString::fromStdString(path.string()));
    m_output.runAll();
    EXPECT_EQ(editor->savedNote(), "Saved");
    const std::string bytes = readFile(path);
    std::string chunks;
    for (std::size_t at = 8; at + 8 <= bytes.size();) {
        const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[at + i]); };
        chunks += bytes.substr(at + 4, 4) + " ";
        at += 12 + (byte(0) * 16777216U + byte(1) * 65536U + byte(2) * 256U + byte(3));
    }
    EXPECT_EQ(chunks.find("tEXt"), std::string::npos) << chunks;
    EXPECT_EQ(chunks.find("tIME"), std::string::npos) << chunks;
    EXPECT_EQ(chunks.find("eXIf"), std::string::npos) << chunks;
    EXPECT_NEAR(readImage(QByteArray::fromStdString(bytes)).dotsPerMeterX(), 144 / 0.0254, 2);
}

/// Each way out: what cannot be made or written is told, once, and nothing claims to be done.
TEST_F(Editor, saysWhatCouldNotBeMadeOrWritten)
{
    struct Case {
        std::string name;
        bool isMade;
        QString folder;
        std::function<void(ShotOutput&)> act;
        QString sentence;
    };
    const QString nowhere = QStringLiteral("/proc/nowhere");
    const auto take = [](const QString& format) {
        return [format](ShotOutput& output) {
            ShotMimeData data(output.shotExport({}), QStringLiteral("/proc/nowhere"));
            QObject::connect(&data, &ShotMimeData::failed, &output, &ShotOutput::failed);
            for (int i = 0; i < 3; ++i)
                EXPECT_EQ(data.data(format), QByteArray());
        };
    };
    const std::vector<Case> cases{
        {"copy", false, {}, [](ShotOutput& o) { o.copy({}); }, "no memory"},
        {"save", false, {}, [](ShotOutput& o) { o.save({}, "/tmp/never.png"); }, "no memory"},
        {"open", false, {}, [](ShotOutput& o) { o.openWith({}); }, "no memory"},
        {"mail", false, {}, [](ShotOutput& o) { o.composeMail({}); }, "no memory"},
        {"drop a picture", false, {}, take("image/png"), "no memory"},
        {"drop a file", false, {}, take("text/uri-list"), "no memory"},
        {"save nowhere",
         true,
         {},
         [](ShotOutput& o) { o.save({}, "/proc/nowhere/shot.png"); },
         "/proc/nowhere/shot.png"},
        {"open from nowhere", true, nowhere, [](ShotOutput& o) { o.openWith({}); }, nowhere},
        {"drop a file nowhere", true, nowhere, take("text/uri-list"), nowhere}};
    for (const Case& c : cases) {
        const auto make = [&c](const ShotLook&) -> QByteArray {
            return c.isMade ? QByteArray("picture") : throw Error(ErrorCode::kNoShot, "no memory");
        };
        ShotOutput output(make, {.worker = m_output, .files = nullptr, .folder = c.folder});
        const QSignalSpy failures(&output, &ShotOutput::failed);
        const QSignalSpy done(&output, &ShotOutput::done);
        c.act(output);
        m_output.runAll();
        ASSERT_EQ(failures.count(), 1) << c.name;
        EXPECT_TRUE(failures.front().front().toString().contains(c.sentence)) << c.name;
        EXPECT_EQ(done.count(), 0) << c.name;
        EXPECT_FALSE(output.isBusy()) << c.name;
    }
}

/// A blurred part is the same whatever fine detail lay below it.
TEST_F(Editor, keepsNothingOfWhatIsBlurred)
{
    const auto covered = [](std::uint32_t first, std::uint32_t second) {
        Canvas canvas(240, 160);
        canvas.fillAll(Color::gray(1));
        for (int y = 40; y < 120; ++y)
            for (int x = 40; x < 200; ++x)
                canvas.pixels().row(y)[x] = (x + y) % 2 ? first : second;
        Annotation blur{.kind = Annotation::Kind::Blur, .start = {40, 40}, .end = {200, 120}};
        const ShotDocument document{.annotations = {blur}, .crop = {}};
        return flattened(canvas, document, ShotStyle{.bare = true});
    };
    const Canvas a = covered(0xFF000000U, 0xFFFFFFFFU);
    const Canvas b = covered(0xFFFFFFFFU, 0xFF000000U);
    int worst = 0;
    for (int y = 40; y < 120; ++y)
        for (int x = 40; x < 200; ++x)
            worst = std::max(
                worst,
                std::abs(
                    static_cast<int>(a.pixels().row(y)[x] & 0xFF)
                    - static_cast<int>(b.pixels().row(y)[x] & 0xFF)));
    EXPECT_LE(worst, 8);
}

TEST_F(Editor, copiesAPictureThatOutlivesIt)
{
    auto editor = open(shotOf(200, 100));
    const QSignalSpy closed(editor.get(), &ScreenshotEditor::closed);
    editor->copy();
    editor->close();
    EXPECT_EQ(closed.count(), 0); // the picture is still being made
    m_output.runAll();
    EXPECT_EQ(closed.count(), 1);
    const QByteArray expected = editor->shotExport().makePNG();
    editor.release()->deleteLater();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    EXPECT_EQ(data->formats(), QStringList("image/png"));
    EXPECT_EQ(data->data("image/png"), expected);
}

TEST_F(Editor, makesADraggedFileWhenItIsTaken)
{
    const test::TemporaryFolder folder;
    int made = 0;
    const QString path = QString::fromStdString(folder.path().string());
    const ShotMimeData data(
        {"Zento 1.png",
         [&made] {
             ++made;
             return QByteArray("picture");
         }},
        path);
    EXPECT_TRUE(data.hasUrls());
    EXPECT_EQ(made, 0);
    ASSERT_EQ(data.urls().size(), 1);
    EXPECT_EQ(readFile(data.urls().front().toLocalFile().toStdString()), "picture");
    EXPECT_EQ(data.data("image/png"), "picture");
    EXPECT_EQ(made, 1);
}

} // namespace
} // namespace zento

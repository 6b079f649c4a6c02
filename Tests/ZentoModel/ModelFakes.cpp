#include "ModelFakes.h"

#include "TestSupport/QtEnvironment.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"

#include <QLocale>

namespace zento::test {

namespace {

/// Texts shall not depend on who runs the tests.
class PlainEnvironment final : public QtEnvironment {
public:
    void SetUp() override
    {
        QLocale::setDefault(QLocale::C);
        QtEnvironment::SetUp();
    }
};

// NOLINTNEXTLINE(cert-err58-cpp): how the library is told
const testing::Environment* const kEnvironment =
    testing::AddGlobalTestEnvironment(new PlainEnvironment);

class FakeCapture final : public RecordingCapture {
public:
    FakeCapture(FakeCaptures& captures, CaptureOrder order)
        : m_captures(captures)
        , m_order(std::move(order))
    {
    }

    void choose(const std::stop_token& stop) override
    {
        m_captures.steps.emplace_back("choose");
        if (m_captures.whileChoosing) {
            m_captures.whileChoosing();
        }
        if (stop.stop_requested()) {
            throw Error(ErrorCode::kCancelled, "given up");
        }
        if (!m_captures.choiceFailure.empty()) {
            throw Error(ErrorCode::kPortalDenied, m_captures.choiceFailure);
        }
    }

    void start() override
    {
        m_captures.steps.emplace_back("start");
        std::filesystem::create_directories(m_order.bundle);
        if (!m_captures.startFailure.empty()) {
            throw Error(ErrorCode::kNoInput, m_captures.startFailure);
        }
    }

    void stop() override
    {
        m_captures.steps.emplace_back("stop");
        if (!m_captures.stopFailure.empty()) {
            throw Error(ErrorCode::kNoFrames, m_captures.stopFailure);
        }
        if (m_captures.leavesBundle) {
            writeFile(m_order.bundle / "meta.json", metaText());
        }
        for (const std::string& file : m_captures.sideFiles) {
            writeFile(m_order.bundle / file, "");
        }
    }

    int frameCount() const override { return m_captures.frameCount; }
    int droppedFrameCount() const override { return m_captures.droppedFrameCount; }

private:
    FakeCaptures& m_captures;
    CaptureOrder m_order;
};

} // namespace

CaptureFactory FakeCaptures::factory()
{
    return [this](const CaptureOrder& order, auto stopped) {
        orders.push_back(order);
        onStreamStopped = std::move(stopped);
        return std::make_unique<FakeCapture>(*this, order);
    };
}

FilmMakers FakeFilms::makers()
{
    const auto make = [this](
                          const std::filesystem::path& file,
                          const FilmReports& reports,
                          const std::stop_token& stop) {
        if (meanwhile) {
            meanwhile(reports);
        }
        if (stop.stop_requested()) {
            throw Error(ErrorCode::kCancelled, "cancelled");
        }
        if (!failure.empty()) {
            throw Error(ErrorCode::kNoFrames, failure);
        }
        writeFile(file, "");
        made.push_back(file.filename().string());
    };
    return {
        .film =
            [make](
                const auto&, const auto&, const auto& film, const auto& reports, const auto& stop) {
                make(film, reports, stop);
            },
        .gif =
            [make](const auto&, const auto& gif, const auto& reports, const auto& stop) {
                make(gif, reports, stop);
            }};
}

std::string metaText(const std::string& title, const std::string& application)
{
    SessionMeta meta{
        .pixelWidth = 640,
        .pixelHeight = 480,
        .scaleFactor = 1,
        .nominalFPS = 60,
        .duration = 12.5};
    if (!title.empty()) {
        meta.title = title;
    }
    if (!application.empty()) {
        meta.appName = application;
    }
    return encodeMeta(meta);
}

ModelTest::ModelTest()
{
    std::filesystem::create_directories(m_sessions);
    m_defaults = std::make_unique<QSettings>(
        QString::fromStdString((m_folder / "defaults.ini").string()), QSettings::IniFormat);
    makeModel();
    m_model->settings()->setProperty("countdownSeconds", 0);
}

void ModelTest::makeModel()
{
    m_model.reset();
    m_model = std::make_unique<AppModel>(AppServices{
        .clock = m_clock,
        .files = m_files,
        .capture = m_captureWorker,
        .exports = m_exports,
        .probes = m_probes,
        .editor =
            {.edits = m_edits,
             .analyses = m_analyses,
             .speech = m_analyses,
             .proxies = m_edits,
             .pictures = m_analyses,
             .sounds = m_analyses,
             .makeProxy = [](const std::filesystem::path& bundle,
                             const auto&,
                             const auto&) { return bundle / "proxy.mp4"; },
             .makeComposer = [](auto) { return std::make_unique<SilentComposer>(); },
             .desktopImage = [] { return std::optional<std::string>(); },
             .analysers = {}},
        .language = m_analyses,
        .findModel = [this](const auto& choice, const auto&) { return m_findModel(choice); },
        .speechModels = m_files,
        .speechModel = {},
        .music = m_files,
        .musicPlayer = m_files,
        .musicSources = {},
        .fileServices = m_services,
        .hotkeys = m_hotkeys,
        .defaults = *m_defaults,
        .settingsFile = m_folder / "settings.json",
        .sessionsFolder = m_sessions,
        .home = m_folder.path(),
        .makeCapture = m_captures.factory(),
        .choice = m_choice,
        .displayPicture = [this](const auto&) { return m_displayPicture(); },
        .makers = m_films.makers(),
        .freeSpace = [this] { return m_freeSpace; },
        .runAction = [this](const std::string& name) { m_actions.push_back(name); },
        .installedActions = [] { return std::vector<std::string>{"One", "Two"}; },
        .displayOf = [](const CaptureTarget&) { return QRectF(0, 0, 1920, 1080); },
        .displays = [] { return std::vector<QRectF>{{0, 0, 1920, 1080}}; },
        .permissions = [this] { return m_permissions; },
        .permissionRequests = {},
        .devices = [this] { return m_devices; },
        .windows = [this] { return m_windows; },
        .windowThumbnail = [](std::uint32_t,
                              int width) { return QImage(width, 10, QImage::Format_RGB32); },
        .fetch =
            [this](const QUrl& url, const auto& done) {
                m_fetched.push_back(url);
                done(m_updateDocument);
            },
        .updates = {QUrl("https://updates.example.org/version.json"), "zento.example.org"},
        .version = "1.9",
        .hasTray = [this] { return m_hasTray; },
        .relaunch = [this] { m_actions.emplace_back("relaunch"); },
        .quit = [this] { m_actions.emplace_back("quit"); },
    });
}

std::filesystem::path
ModelTest::bundle(const std::string& name, const std::string& meta, Age age) const
{
    const std::filesystem::path folder = m_sessions / (name + ".zento");
    const auto before =
        age == Age::Later ? sessionFolders(m_sessions) : std::vector<SessionFolder>{};
    do {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    } while (!before.empty() && creationDate(folder) <= before.front().date);
    if (!meta.empty()) {
        writeFile(folder / "meta.json", meta);
    }
    return folder;
}

} // namespace zento::test

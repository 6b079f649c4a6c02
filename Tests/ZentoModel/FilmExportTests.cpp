#include "ModelFakes.h"

namespace zento::test {

namespace {

using Phase = RecordingFlow::Phase;

class FilmExportTest : public ModelTest {
protected:
    FilmExportTest()
    {
        bundle("one", metaText("One"));
        start();
        set("revealAfterExport", false);
    }

    void set(const char* key, const QVariant& value)
    {
        m_model->settings()->setProperty(key, value);
    }
    FilmExport& job() { return *m_model->filmExport(); }
    Phase phase() { return m_model->recording()->phase(); }
};

} // namespace

TEST_F(FilmExportTest, WritesWhatTheSettingsSay)
{
    struct Case {
        const char* name;
        const char* format;
        const char* destination;
        bool isRevealed;
        std::vector<std::string> made;
        const char* toast;
        std::vector<std::string> calls;
    };
    const std::vector<Case> cases{
        {"a film", "mp4", "", false, {"one.mp4"}, "Video exported", {}},
        {"a film, shown", "mp4", "", true, {"one.mp4"}, "Video exported", {"reveal one.mp4"}},
        {"a film elsewhere", "mp4", "a.mp4", true, {"a.mp4"}, "Video exported", {"reveal a.mp4"}},
        {"a GIF is made from the film",
         "gif",
         "",
         true,
         {"one.mp4", "one.gif"},
         "GIF exported",
         {"reveal one.gif"}},
        {"only the GIF goes elsewhere",
         "gif",
         "b.gif",
         false,
         {"one.mp4", "b.gif"},
         "GIF exported",
         {}},
        {"a name without an end", "mp4", "v1.2", false, {"v1.2.mp4"}, "Video exported", {}},
        {"the other format's end", "gif", "c.mp4", false, {"one.mp4", "c.gif"}, "GIF exported", {}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        m_films.made.clear();
        m_services.calls.clear();
        set("exportFormat", test.format);
        set("revealAfterExport", test.isRevealed);
        if (*test.destination != '\0') {
            job().setDestination(QString::fromStdString((m_folder / test.destination).string()));
        }
        job().start();
        EXPECT_EQ(m_films.made, test.made);
        EXPECT_EQ(toast().toStdString(), test.toast);
        EXPECT_EQ(m_services.calls, test.calls);
        EXPECT_EQ(phase(), Phase::Idle);
        EXPECT_EQ(job().destination(), "") << "a chosen place is for one export";
        EXPECT_TRUE(m_model->library()->selectedItem()["hasRender"].toBool());
    }
}

TEST_F(FilmExportTest, ShowsTheFilmFromTheToastWhenItWasNotShown)
{
    job().start();
    ASSERT_EQ(m_model->messages()->toastAction(), "Show");
    m_model->messages()->runToastAction();
    EXPECT_EQ(m_services.calls, std::vector<std::string>{"reveal one.mp4"});
}

TEST_F(FilmExportTest, TellsHowFarItIsAndGuessesTheRest)
{
    std::vector<std::string> seen;
    m_films.meanwhile = [&](const FilmReports& reports) {
        const auto report = [&](int frame) {
            reports.onProgress({frame, 200});
            m_clock.advance(std::chrono::seconds(2));
            seen.push_back(
                std::to_string(job().frame()) + "/" + std::to_string(job().totalFrames()) + " "
                + std::to_string(std::lround(m_model->recording()->progress() * 100)) + "% "
                + std::to_string(job().secondsLeft()) + "s");
        };
        EXPECT_EQ(job().name(), "One");
        EXPECT_EQ(phase(), Phase::Rendering);
        report(2);   // too early to guess
        report(50);  // 4 s for a quarter
        report(200); // done
    };
    job().start();
    EXPECT_EQ(
        seen, (std::vector<std::string>{"2/200 1% -1s", "50/200 25% 12s", "200/200 100% 0s"}));
    EXPECT_EQ(job().session(), "");
}

TEST_F(FilmExportTest, GivesUpWhenCancelled)
{
    for (const char* format : {"mp4", "gif"}) {
        SCOPED_TRACE(format);
        set("exportFormat", format);
        m_films.meanwhile = [&](const FilmReports&) {
            job().cancel();
            EXPECT_TRUE(job().isCancelling());
        };
        job().start();
        EXPECT_EQ(toast(), "Export cancelled");
        EXPECT_EQ(error(), "");
        EXPECT_TRUE(m_films.made.empty());
        EXPECT_EQ(phase(), Phase::Idle);
        EXPECT_FALSE(job().isCancelling());
    }
}

TEST_F(FilmExportTest, TellsWhatWentWrong)
{
    m_films.failure = "the disk is full";
    job().start();
    EXPECT_EQ(error(), "Render failed: the disk is full");
    EXPECT_EQ(phase(), Phase::Idle);

    set("exportFormat", "gif");
    m_films.meanwhile = [&](const FilmReports&) {
        m_films.failure = phase() == Phase::ExportingGif ? "no colours" : "";
    };
    job().start();
    EXPECT_EQ(error(), "GIF export failed: no colours");
    EXPECT_EQ(phase(), Phase::Idle);
}

TEST_F(FilmExportTest, IsOneAtATimeAndNotBesideARecording)
{
    m_exports.isHeld = true;
    job().start();
    job().start();
    EXPECT_EQ(m_exports.waiting(), 1U);
    m_model->recording()->toggleRecording();
    EXPECT_EQ(phase(), Phase::Rendering) << "the hot key does nothing during an export";
    m_exports.release();

    m_model->recording()->toggleRecording();
    ASSERT_EQ(phase(), Phase::Recording);
    job().start();
    EXPECT_EQ(m_exports.waiting(), 0U);
}

TEST_F(FilmExportTest, GoesOnForItsRecordingWhenAnotherIsSelected)
{
    const auto other = bundle("two", metaText("Two"));
    m_model->library()->refresh();
    m_films.meanwhile = [&](const FilmReports&) {
        m_model->library()->select(QString::fromStdString(other.string()));
    };
    set("revealAfterExport", true);
    job().start();
    EXPECT_EQ(m_services.calls, std::vector<std::string>{"reveal one.mp4"});
}

TEST_F(FilmExportTest, IsGivenUpBeforeTheProgramEnds)
{
    m_exports.isHeld = true;
    job().start();
    m_model->quit();
    EXPECT_TRUE(job().isCancelling());
    EXPECT_TRUE(m_actions.empty()) << "the temporary files are still there";
    m_exports.release();
    EXPECT_EQ(m_actions, std::vector<std::string>{"quit"});
    EXPECT_TRUE(m_films.made.empty());
}

} // namespace zento::test

#include "ModelFakes.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"

#include <QSignalSpy>

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace zento::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecordingLibraryTest : public ModelTest {
protected:
    RecordingLibraryTest() { m_captureWorker.isHeld = true; }

    RecordingLibrary& library() { return *m_model->library(); }

    std::vector<std::string> shown()
    {
        std::vector<std::string> names;
        for (int row = 0; row < library().rowCount(); ++row) {
            names.push_back(
                library().data(library().index(row), Qt::DisplayRole).toString().toStdString());
        }
        return names;
    }

    static QString text(const std::filesystem::path& path)
    {
        return QString::fromStdString(path.string());
    }

    /// A trash beside the sessions.
    static Trash::Entry put(const std::filesystem::path& path)
    {
        const auto trash = path.parent_path().parent_path() / "trash";
        std::filesystem::create_directories(trash);
        std::filesystem::rename(path, trash / path.filename());
        return {path, trash / path.filename()};
    }
};

TEST_F(RecordingLibraryTest, ListsWholeRecordingsNewestFirst)
{
    bundle("1", metaText("First"));
    bundle("2", metaText("Second"));
    bundle("3", metaText("  "));
    writeFile(m_sessions / "2.mp4", "");
    bundle("torn", R"({"pixelWidth": 64)");
    bundle("orphan", "");
    std::filesystem::create_directories(m_sessions / "holiday");
    writeFile(m_sessions / "holiday/meta.json", metaText("Foreign"));
    writeFile(m_sessions / "file.zento", "no folder");
    library().refresh();
    const QString dated = library().data(library().index(0), RecordingLibrary::NameRole).toString();
    EXPECT_THAT(shown(), ElementsAre(dated.toStdString(), "Second", "First"));
    EXPECT_TRUE(dated.contains(QDate::currentDate().toString("yyyy"))) << dated.toStdString();
    EXPECT_FALSE(library().data(library().index(0), RecordingLibrary::HasRenderRole).toBool());
    EXPECT_TRUE(library().data(library().index(1), RecordingLibrary::HasRenderRole).toBool());
    EXPECT_EQ(library().selectedRow(), 0);
}

TEST_F(RecordingLibraryTest, AFolderThatCannotBeReadIsAnEmptyLibrary)
{
    for (const auto& folder : {m_folder / "missing", m_folder / "file"}) {
        m_sessions = folder;
        makeModel();
        const QSignalSpy refreshed(&library(), &RecordingLibrary::refreshed);
        library().refresh();
        EXPECT_EQ(refreshed.size(), 1);
        EXPECT_FALSE(library().isLoading());
        EXPECT_EQ(library().selected(), "");
        writeFile(m_folder / "file", "");
    }
}

TEST_F(RecordingLibraryTest, AThousandComeInPartsAndChangeRowByRow)
{
    for (int i = 0; i < 1000; ++i) {
        bundle(std::to_string(i), metaText("Take " + std::to_string(i)), Age::Any);
    }
    m_files.isHeld = true;
    library().refresh();
    m_files.step(); // the folder
    m_files.step(); // a part
    EXPECT_GT(library().count(), 0);
    EXPECT_LT(library().count(), 200);
    EXPECT_TRUE(library().isLoading());
    m_files.release();
    EXPECT_EQ(library().count(), 1000);

    std::filesystem::remove_all(m_sessions / "500.zento");
    bundle("new", metaText("New"));
    writeFile(m_sessions / "700.mp4", "");
    const QSignalSpy reset(&library(), &QAbstractItemModel::modelReset);
    const QSignalSpy inserted(&library(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy removed(&library(), &QAbstractItemModel::rowsRemoved);
    const QSignalSpy changed(&library(), &QAbstractItemModel::dataChanged);
    library().refresh();
    m_files.release();
    EXPECT_EQ(reset.size(), 0);
    EXPECT_EQ(inserted.size(), 1);
    EXPECT_EQ(removed.size(), 1);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(shown().front(), "New");
}

TEST_F(RecordingLibraryTest, AWishWhileListingIsNotLost)
{
    m_files.isHeld = true;
    bool isDone = false;
    library().refresh();
    m_files.step();
    const auto late = bundle("late", metaText("Late"));
    library().refresh([&] {
        isDone = true;
        EXPECT_THAT(shown(), ElementsAre("Late"));
    });
    m_files.release();
    EXPECT_TRUE(isDone);
}

TEST_F(RecordingLibraryTest, SearchesNamesApplicationsAndDates)
{
    bundle("1", metaText("Invoice walkthrough", "Harbour"));
    bundle("2", metaText("Parser", "Kite Editor"));
    library().refresh();
    struct Case {
        QString search;
        int count;
    };
    const QString month = QLocale::c().toString(QDate::currentDate(), "MMMM");
    for (const auto& [search, count] : std::vector<Case>{
             {"", 2}, {"  ", 2}, {" INVOICE ", 1}, {"kite", 1}, {month, 2}, {"nothing", 0}}) {
        library().setSearch(search);
        EXPECT_EQ(library().count(), count) << search.toStdString();
    }
    EXPECT_EQ(library().totalCount(), 2);
}

TEST_F(RecordingLibraryTest, TheSelectionIsRemembered)
{
    const auto first = bundle("1", metaText("First"));
    bundle("2", metaText("Second"));
    library().refresh();
    EXPECT_EQ(library().selectedItem()["name"], "Second");
    library().select(text(first));
    makeModel();
    library().refresh();
    EXPECT_EQ(library().selectedItem()["name"], "First");
    library().select("/nowhere.zento");
    EXPECT_EQ(library().selectedItem()["name"], "First");
    std::filesystem::remove_all(first);
    library().refresh();
    EXPECT_EQ(library().selectedItem()["name"], "Second");
}

TEST_F(RecordingLibraryTest, RenamingKeepsTheFactsAndABlankTitleIsNone)
{
    const auto folder = bundle("1", metaText("Old", "Harbour"));
    library().refresh();
    library().rename(text(folder), "  New name ");
    EXPECT_THAT(shown(), ElementsAre("New name"));
    library().rename(text(folder), "   ");
    const SessionMeta meta = decodeMeta(readFile(folder / "meta.json"));
    EXPECT_EQ(meta.title, std::nullopt);
    EXPECT_EQ(meta.appName, "Harbour");
    writeFile(folder / "meta.json", "torn"); // behind our back
    library().rename(text(folder), "Again");
    EXPECT_EQ(readFile(folder / "meta.json"), "torn");
    EXPECT_EQ(error(), "");
}

TEST_F(RecordingLibraryTest, TheTrashTakesRecordingAndFilmAndGivesThemBack)
{
    const auto first = bundle("1", metaText("First"));
    const auto second = bundle("2", metaText("Second"));
    writeFile(m_sessions / "2.mp4", "film");
    RecordingLibrary library(
        {.folder = m_sessions,
         .clock = m_clock,
         .worker = m_files,
         .files = m_services,
         .messages = *m_model->messages(),
         .question = *m_model->question(),
         .defaults = *m_defaults,
         .trash = put});
    library.refresh();
    Question& question = *m_model->question();

    library.moveToTrash(text(second));
    EXPECT_EQ(question.text(), "Move “Second” to the Trash?");
    EXPECT_EQ(question.detail(), "The recording and its exported video go to the Trash together.");
    question.reject();
    question.accept(); // too late
    EXPECT_TRUE(std::filesystem::exists(second));

    library.moveToTrash(text(second));
    question.accept();
    EXPECT_FALSE(std::filesystem::exists(second));
    EXPECT_FALSE(std::filesystem::exists(m_sessions / "2.mp4"));
    EXPECT_EQ(library.selected(), text(first));
    EXPECT_EQ(toast(), "Moved to the Trash");

    m_model->messages()->runToastAction();
    EXPECT_EQ(readFile(m_sessions / "2.mp4"), "film");
    EXPECT_EQ(library.selected(), text(second));
    EXPECT_EQ(error(), "");
}

TEST_F(RecordingLibraryTest, WhatTheTrashDoesNotTakeStays)
{
    const auto folder = bundle("1", metaText("First"));
    writeFile(m_sessions / "1.mp4", "film");
    RecordingLibrary library(
        {.folder = m_sessions,
         .clock = m_clock,
         .worker = m_files,
         .files = m_services,
         .messages = *m_model->messages(),
         .question = *m_model->question(),
         .defaults = *m_defaults,
         .trash = [](const std::filesystem::path& path) {
             if (path.extension() == ".mp4") {
                 throw Error(ErrorCode::kTrashFailed, "the trash is full");
             }
             return put(path);
         }});
    library.refresh();
    library.moveToTrash(text(folder));
    m_model->question()->accept();
    EXPECT_EQ(error(), "Not everything went to the Trash: the trash is full.");
    library.undoTrash();
    EXPECT_EQ(library.count(), 1);
}

TEST_F(RecordingLibraryTest, TheDesktopsTrashGivesBackWhatItTook)
{
    ::setenv("XDG_DATA_HOME", (m_folder / "data").c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    const auto folder = bundle("1", metaText("First"));
    const Trash::Entry entry = Trash::put(folder); // the user's first
    EXPECT_EQ(entry.trashed, m_folder / "data/Trash/files/1.zento");
    EXPECT_FALSE(std::filesystem::exists(folder));
    EXPECT_TRUE(std::filesystem::exists(entry.trashed / "meta.json"));
    std::filesystem::create_directories(folder);
    EXPECT_THROW(Trash::restore(entry), Error); // something else is there now
    std::filesystem::remove(folder);
    Trash::restore(entry);
    EXPECT_TRUE(std::filesystem::exists(folder / "meta.json"));
    EXPECT_THAT(
        std::vector<std::filesystem::path>(
            std::filesystem::directory_iterator(entry.trashed.parent_path().parent_path() / "info"),
            std::filesystem::directory_iterator()),
        IsEmpty());
    EXPECT_THROW(Trash::restore(entry), Error);
}

TEST_F(RecordingLibraryTest, AFilmIsCopiedShownAndOpenedFromTheSearch)
{
    const auto first = bundle("1", metaText("First"));
    bundle("2", metaText("Second"));
    library().refresh();
    library().copyRenderToClipboard(); // there is none
    EXPECT_EQ(toast(), "");
    writeFile(m_sessions / "1.mp4", "");
    m_model->openFromSearch(text(first));
    EXPECT_EQ(library().selected(), text(first));
    m_model->openFromSearch("/nowhere.zento");
    EXPECT_EQ(library().selected(), text(first));
    library().copyRenderToClipboard();
    library().revealRender();
    EXPECT_EQ(toast(), "Video copied to clipboard");
    EXPECT_THAT(m_services.calls, ElementsAre("copy 1.mp4", "reveal 1.mp4"));
}

} // namespace

} // namespace zento::test

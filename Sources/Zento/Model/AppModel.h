#pragma once

#include "Zento/Model/Editor.h"
#include "Zento/Model/FilmCopy.h"
#include "Zento/Model/FilmExport.h"
#include "Zento/Model/LanguageSettings.h"
#include "Zento/Model/Messages.h"
#include "Zento/Model/Permissions.h"
#include "Zento/Model/Question.h"
#include "Zento/Model/RecordingFlow.h"
#include "Zento/Model/RecordingLibrary.h"
#include "Zento/Model/RecordingMusic.h"
#include "Zento/Model/SettingsModel.h"
#include "Zento/Model/Sharing.h"
#include "Zento/Model/Shortcuts.h"
#include "Zento/Model/SpeechSettings.h"
#include "Zento/Model/UpdateCheck.h"
#include "Zento/Model/WindowList.h"
#include "ZentoCapture/Desktop.h"
#include "ZentoCapture/DeviceWatch.h"

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QWindow>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace zento {

/// What a display shows at a moment.
struct DisplayPicture {
    QRectF bounds; // points of the desktop
    QImage image;
};

/// What the model needs of the desktop. Whatever a reference stands for outlives the model.
struct AppServices {
    Clock& clock;
    Worker& files;   // the library, the settings, copies
    Worker& capture; // recordings
    Worker& exports; // films
    Worker& probes;  // what may take long to answer: permissions, windows
    EditorServices editor;
    Worker& language; // asks language models
    ModelSearch findModel;
    Worker& speechModels; // fetches them
    SpeechModelPlace speechModel;
    Worker& music; // fetches and copies it
    Worker& musicPlayer;
    RecordingMusic::Sources musicSources;
    FileServices& fileServices;
    GlobalHotkeys& hotkeys;
    QSettings& defaults;
    std::filesystem::path settingsFile;
    std::filesystem::path sessionsFolder;
    std::filesystem::path home;
    CaptureFactory makeCapture;
    Desktop::Choice choice = Desktop::Choice::ByProgram; // of what is recorded
    /// The display the user chooses, or chose the last time; blocks. For `Choice::ByUser`.
    std::function<DisplayPicture(const std::stop_token&)> displayPicture;
    FilmMakers makers;
    std::function<std::optional<std::int64_t>()> freeSpace;
    std::function<void(const std::string&)> runAction;
    std::function<std::vector<std::string>()> installedActions; // blocks
    std::function<QRectF(const CaptureTarget&)> displayOf;
    std::function<std::vector<QRectF>()> displays; // points, the first being the main one
    Permissions::Probe permissions;
    Permissions::Requests permissionRequests;
    std::function<CaptureDevices()> devices; // blocks
    std::function<std::vector<DesktopWindow>()> windows;
    std::function<QImage(std::uint32_t, int)> windowThumbnail;
    UpdateCheck::Fetch fetch;
    UpdateEndpoint updates;
    QString version;
    std::function<bool()> hasTray;  // an icon of ours is shown
    std::function<void()> relaunch; // starts the program anew and ends this one
    std::function<void()> quit;     // ends the event loop
};

/// The application: the parts that each keep one thing in order, and what lies between them.
///
/// Threading: the main thread.
class AppModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(zento::RecordingFlow* recording READ recording CONSTANT)
    Q_PROPERTY(zento::RecordingLibrary* library READ library CONSTANT)
    Q_PROPERTY(zento::SettingsModel* settings READ settings CONSTANT)
    Q_PROPERTY(zento::Shortcuts* shortcuts READ shortcuts CONSTANT)
    Q_PROPERTY(zento::Permissions* permissions READ permissions CONSTANT)
    Q_PROPERTY(zento::Messages* messages READ messages CONSTANT)
    Q_PROPERTY(zento::Question* question READ question CONSTANT)
    Q_PROPERTY(zento::Sharing* sharing READ sharing CONSTANT)
    Q_PROPERTY(zento::UpdateCheck* updates READ updates CONSTANT)
    Q_PROPERTY(zento::FilmExport* filmExport READ filmExport CONSTANT)
    Q_PROPERTY(zento::WindowList* windows READ windows CONSTANT)
    Q_PROPERTY(zento::Editor* editor READ editor CONSTANT)
    Q_PROPERTY(zento::LanguageSettings* language READ language CONSTANT)
    Q_PROPERTY(zento::SpeechSettings* speech READ speech CONSTANT)
    Q_PROPERTY(zento::FilmCopy* filmCopy READ filmCopy CONSTANT)
    /// Everything is written and the program is about to end: windows may close.
    Q_PROPERTY(bool isEnding READ isEnding)
    Q_PROPERTY(zento::RecordingMusic* music READ music CONSTANT)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY historyChanged)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY historyChanged)
    /// With the name of the step: "Undo Trim".
    Q_PROPERTY(QString undoText READ undoText NOTIFY historyChanged)
    Q_PROPERTY(QString redoText READ redoText NOTIFY historyChanged)
    /// The user chooses in a dialog of the desktop's what is recorded: there is no list of windows,
    /// and an area is marked on a picture of the display that was chosen.
    Q_PROPERTY(bool choosesInDialog READ choosesInDialog CONSTANT)
    /// How the window goes out of sight while something is recorded: into the taskbar, where
    /// neither a stop panel nor a tray is left to end it with. To be read when it goes.
    Q_PROPERTY(bool hidesInTaskbar READ hidesInTaskbar)
    /// State of the window that is kept from run to run.
    Q_PROPERTY(bool showInspector READ showInspector WRITE setShowInspector NOTIFY viewChanged)
    Q_PROPERTY(QString inspectorTab READ inspectorTab WRITE setInspectorTab NOTIFY viewChanged)
    Q_PROPERTY(bool showWelcome READ showWelcome WRITE setShowWelcome NOTIFY viewChanged)
    /// What floats or asks at the moment. Closing it is writing `NoPanel`.
    Q_PROPERTY(Panel panel READ panel WRITE setPanel NOTIFY panelChanged)
    /// The picker that is open was opened for a screenshot, not for a recording.
    Q_PROPERTY(bool picksForShot READ picksForShot NOTIFY panelChanged)
    /// The names that `focusOnShortcut` and `focusOffShortcut` can have; see `refreshActions`.
    Q_PROPERTY(QStringList installedActions READ installedActions NOTIFY installedActionsChanged)
    /// What `microphoneID` and `cameraID` can be, as maps of "value" and "name"; see
    /// `refreshDevices`.
    Q_PROPERTY(QVariantList microphones READ microphones NOTIFY devicesChanged)
    Q_PROPERTY(QVariantList cameras READ cameras NOTIFY devicesChanged)
    /// "182 GB free", where the recordings lie; empty where the system does not say. Asked for anew
    /// with every listing of the library.
    Q_PROPERTY(QString freeSpace READ freeSpace NOTIFY freeSpaceChanged)

public:
    enum class Panel { NoPanel, CapturePanel, AreaPicker, WindowPicker };
    Q_ENUM(Panel)

    explicit AppModel(AppServices services);
    ~AppModel() override;

    RecordingFlow* recording() { return &m_recording; }
    RecordingLibrary* library() { return &m_library; }
    SettingsModel* settings() { return &m_settings; }
    Shortcuts* shortcuts() { return &m_shortcuts; }
    Permissions* permissions() { return &m_permissions; }
    Messages* messages() { return &m_messages; }
    Question* question() { return &m_question; }
    Sharing* sharing() { return &m_sharing; }
    UpdateCheck* updates() { return &m_updates; }
    FilmExport* filmExport() { return &m_export; }
    WindowList* windows() { return &m_windows; }
    Editor* editor() { return &m_editor; }
    LanguageSettings* language() { return &m_language; }
    SpeechSettings* speech() { return &m_speech; }
    FilmCopy* filmCopy() { return &m_copy; }
    bool isEnding() const { return m_isEnding; }
    RecordingMusic* music() { return &m_music; }
    bool canUndo() { return m_editor.session()->canUndo(); }
    bool canRedo() { return m_editor.session()->canRedo(); }
    QString undoText();
    QString redoText();
    Q_INVOKABLE void undo() { m_editor.session()->undo(); }
    Q_INVOKABLE void redo() { m_editor.session()->redo(); }

    bool showInspector() const { return m_showInspector; }
    QString inspectorTab() const { return m_inspectorTab; }
    bool showWelcome() const { return m_showWelcome; }
    Panel panel() const { return m_panel; }
    bool picksForShot() const { return m_areaPicked || m_windowPicked; }
    bool choosesInDialog() const { return m_services.choice == Desktop::Choice::ByUser; }
    bool hidesInTaskbar() const { return choosesInDialog() && !m_services.hasTray(); }
    QStringList installedActions() const { return m_installedActions; }
    QString freeSpace() const { return m_freeSpace; }
    QVariantList microphones() const;
    QVariantList cameras() const;

    void setShowInspector(bool isShown);
    void setInspectorTab(const QString& tab); // an unknown one gives the default tab
    void setShowWelcome(bool isShown);
    void setPanel(Panel panel);

    /// Everything that happens at the start, in its order. Returns at once.
    void start();

    /// A window of our own that recordings shall not show: the stop panel. It may be given before
    /// it is shown; several may be.
    Q_INVOKABLE void excludeFromRecording(QWindow* window);

    /// The capture panel; only one exists.
    Q_INVOKABLE void showCapturePanel();

    /// When idle: hides the application and opens the area picker over every display. The picker
    /// answers with `finishArea` or `cancelArea`.
    Q_INVOKABLE void pickArea();
    /// In the desktop's points. 40 points or less in width or height count as a cancel.
    Q_INVOKABLE void finishArea(const QRectF& area);
    Q_INVOKABLE void cancelArea();

    /// The same for somebody else, who gets the answer once: nothing when it was cancelled. With an
    /// area the application stays hidden.
    using AreaHandler = std::function<void(const std::optional<QRectF>&)>;
    void pickArea(AreaHandler picked);

    /// When idle: opens the window picker, or leaves the choice to the desktop's dialog. It answers
    /// with `finishWindow` or by closing the panel.
    Q_INVOKABLE void pickWindow();
    Q_INVOKABLE void finishWindow(quint32 windowID);

    /// The same for somebody else, who gets the answer once: nothing when it was cancelled.
    using WindowHandler = std::function<void(std::optional<quint32>)>;
    void pickWindow(WindowHandler picked);

    /// Those the area picker opens over, as rectangles in points, the main one first.
    Q_INVOKABLE QVariantList displays() const;
    /// What the area is marked on; null where the display itself is.
    QImage displayImage() const { return m_displayPicture.image; }
    Q_INVOKABLE QRectF displayUnderPointer() const;

    /// An action by its id, as a menu, a shortcut or the tray asks for it. What this model does not
    /// do itself comes back as `actionRequested`.
    Q_INVOKABLE void run(const QString& action);

    Q_INVOKABLE void refreshActions();
    Q_INVOKABLE void refreshDevices();
    Q_INVOKABLE void relaunch();

    /// The user closed the window: with a tray the program stays there, without one it ends.
    Q_INVOKABLE void closeWindow();
    /// Stops and writes a recording that runs, gives up an export, then ends the program.
    Q_INVOKABLE void quit();

    /// From the desktop: a second start, a click on the tray or a notification.
    void activate();
    /// From the desktop's search: a bundle's path.
    void openFromSearch(const QString& identifier);

    /// From the desktop: a tray came or went. A message that names the tray follows.
    void trayChanged();

    /// Stops and writes a recording that runs, gives up an export, writes the settings, then calls
    /// `done`.
    void shutDown(std::function<void()> done);

Q_SIGNALS:
    void historyChanged();
    void viewChanged();
    void panelChanged();
    void installedActionsChanged();
    void devicesChanged();
    void freeSpaceChanged();
    /// "exportVideo", "screenshotScreen", …: of parts outside this model.
    void actionRequested(const QString& action);

private:
    AppServices m_services;
    Messages m_messages;
    Question m_question;
    SettingsModel m_settings;
    Permissions m_permissions;
    RecordingLibrary m_library;
    RecordingFlow m_recording;
    Editor m_editor;
    LanguageSettings m_language;
    SpeechSettings m_speech;
    FilmCopy m_copy;
    RecordingMusic m_music;
    FilmExport m_export;
    Sharing m_sharing;
    Shortcuts m_shortcuts;
    UpdateCheck m_updates;
    WindowList m_windows;
    std::vector<QPointer<QWindow>> m_excluded;
    QStringList m_installedActions;
    CaptureDevices m_devices;
    QString m_freeSpace;
    QString m_inspectorTab;
    QString m_hotkeyMessage; // about those that are taken; empty when none is
    bool m_showInspector = true;
    bool m_showWelcome = false;
    Panel m_panel = Panel::NoPanel;
    AreaHandler m_areaPicked; // while its picker is open for somebody else
    WindowHandler m_windowPicked;
    DisplayPicture m_displayPicture; // while the area picker is open over it
    bool m_isLooking = false;        // for that picture
    std::stop_source m_looking;

    bool m_isEnding = false;
    std::uint64_t m_exportedVersion = 0; // of the edit that is exported

    void openAreaPicker(AreaHandler picked);
    void showAreaPicker(AreaHandler picked);
    void connectEditor();
    std::vector<std::uint32_t> excludedWindows() const;
    void tellTakenHotkeys();
    void refreshFreeSpace();
};

} // namespace zento

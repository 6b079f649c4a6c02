import QtQuick

// Everything the QML knows of the application's model, held still: what is asked of it is counted
// in `calls`. The settings are added in C++.
QtObject {
    id: app

    property bool showInspector: true
    property string inspectorTab: "look"
    property bool showWelcome: false
    property int panel: 0
    property var installedActions: ["Zento Focus On", "Zento Focus Off"]
    property var microphones: [{ value: "desk", name: "Desk microphone" }]
    property var cameras: []
    property string freeSpace: "182 GB free"
    property var calls: []
    property var settings
    property string desktop: "Wayland"
    property var editor // FakeEditor.qml, where a test asks for it
    property bool choosesInDialog: false
    property bool hidesInTaskbar: false

    signal actionRequested(string action)

    function note(call) { calls = calls.concat([call]) }
    function called(call) { return calls.includes(call) }
    function excludeFromRecording(window) { note("excludeFromRecording") }
    function showCapturePanel() { note("showCapturePanel"); panel = 1 }
    function pickArea() { note("pickArea"); panel = 2 }
    function finishArea(area) { note("finishArea " + area.width + "x" + area.height); panel = 0 }
    function cancelArea() { note("cancelArea"); panel = 0 }
    function pickWindow() { note("pickWindow"); panel = 3 }
    function finishWindow(id) { note("finishWindow " + id); panel = 0 }
    function displays() { return [Qt.rect(0, 0, 1440, 900)] }
    function displayUnderPointer() { return Qt.rect(0, 0, 1440, 900) }
    function run(action) { note("run " + action); actionRequested(action) }
    function refreshActions() {}
    function refreshDevices() {}

    property QtObject recording: QtObject {
        property int phase: 0
        property real progress: 0
        property int countdownRemaining: 3
        property string elapsed: phase === 2 ? "0:07" : ""
        property bool countdownVisible: phase === 1
        property bool stopPanelVisible: phase === 2
        property rect panelDisplay: Qt.rect(0, 0, 1440, 900)
        property bool isApplicationHidden: false

        signal activationRequested()

        function recordDisplay() { app.note("recordDisplay") }
        function chooseDisplay() { app.note("chooseDisplay") }
        function stopRecording() { app.note("stopRecording") }
        function cancelCountdown() { app.note("cancelCountdown") }
    }
    property QtObject permissions: QtObject {
        property bool screen: true
        property bool input: true
        property bool accessibility: true
        property bool microphone: true
        property bool camera: false
        property bool needsInput: true
        property bool window: true
        property bool scrolling: true
        readonly property bool canRecord: screen && (!needsInput || (input && accessibility))

        function requestInputPermission() { app.note("requestInputPermission") }
        function requestAccessibilityPermission() { app.note("requestAccessibilityPermission") }
        function requestMicrophonePermission() { app.note("requestMicrophonePermission") }
        function requestCameraPermission() { app.note("requestCameraPermission") }
    }
    property QtObject messages: QtObject {
        property string errorMessage
        property string toast
        property string toastAction

        function clearErrorMessage() { errorMessage = "" }
        function closeToast() { toast = "" }
        function runToastAction() { app.note("runToastAction"); toast = "" }
    }
    property QtObject question: QtObject {
        property bool isOpen: false
        property string text: "Move “June invoice walkthrough” to the Trash?"
        property string detail: "The recording and its exported video go to the Trash together."
        property string acceptText: "Move to Trash"
        property string rejectText: "Cancel"
        property bool isDestructive: true

        function accept() { app.note("accept"); isOpen = false }
        function reject() { app.note("reject"); isOpen = false }
    }
    property QtObject music: QtObject {
        property string name: "Glide"
        property real duration: 60
        property string credit: ""
        property var library: [
            { id: "pulse", name: "Pulse", bpm: 120, progress: -1 },
            { id: "glide", name: "Glide", bpm: 100, progress: -1 },
            { id: "sprint", name: "Sprint", bpm: 128, progress: 0.4 }
        ]
        property var results: [
            { id: "a", title: "Morning in the Workshop", creator: "Elin Sandqvist", duration: "2:14", license: "CC BY 4.0" },
            { id: "b", title: "Paper Boats", creator: "The Quiet Ledger", duration: "3:02", license: "CC BY 3.0" },
            { id: "c", title: "Slow Harbour Lights", creator: "Tomas Ilves", duration: "1:48", license: "CC BY-SA 4.0" },
            { id: "d", title: "Untitled", creator: "Unknown", duration: "", license: "CC0 1.0" }
        ]
        property string note: "“Second Cup” — credit saved with the recording"
        property bool isSearching: false
        property string usingTrackID: "c"
        property string usedTrackID: "d"
        property string previewingID: "a"
        property bool isPreviewHeard: true
        property string creditLine: ""

        function togglePreview(id) { app.note("togglePreview " + id) }

        function useFile(path) { app.note("useFile " + path) }
        function useMade(id) { app.note("useMade " + id) }
        function useFound(id) { app.note("useFound " + id) }
        function remove() { app.note("removeMusic") }
        function runSearch(query) { app.note("runSearch " + query) }
        function endSearch() { app.note("endSearch") }
    }
    property QtObject filmExport: QtObject {
        property string session: library.selected
        property string name: library.selectedItem.name ?? ""
        property int frame: 1486
        property int totalFrames: 2606
        property int secondsLeft: 12
        property int renderGeneration: 0
        property bool isCancelling: false
        property string destination

        function start() { app.note("export"); app.recording.phase = 3 }
        function cancel() { app.note("cancelExport"); isCancelling = true }
    }
    property QtObject sharing: QtObject {
        property string cloudStatus
        property string cloudFolder
        property bool isCopying: false

        function shareLastExport() { app.note("shareLastExport"); return true }
        function composeMail() {}
        function openWith() {}
        function uploadToCloud() {}
        function shareCloudLink() {}
    }
    property QtObject speech: QtObject {
        property string engine: "PocketSphinx, built in, English only"
        property string expectation: "Basic: expect one word in five to be wrong. Good enough to keep speech from being cut; read captions before you show them. Speech is recognised on this computer; nothing leaves it."
        property bool hasModel: false
        property bool canUseModels: true
        property var offers: [{ id: "base.en-q5_1", name: "English", megabytes: 57 }, { id: "base-q5_1", name: "Any language", megabytes: 57 }]
        property bool isFetching: false
        property real progress: 0

        function refresh() { app.note("refreshSpeech") }
        function fetch(id) { app.note("fetchSpeech " + id); isFetching = true }
        function cancelFetch() { app.note("cancelFetchSpeech"); isFetching = false }
        function useFile(path) { app.note("useSpeech " + path) }
        function removeModel() { app.note("removeSpeech") }
    }
    property QtObject language: QtObject {
        property string host
        property string model: "small:1b"
        property var models: ["small:1b", "large:8b"]
        property bool isReady: true
        property bool isLooking: false
        property string status: "The language model is ready."
        property string privacy: "Nothing leaves this computer."

        function refresh() { app.note("lookForLanguage") }
    }
    property QtObject filmCopy: QtObject {
        property string title: "Send an invoice before the coffee cools"
        property string caption: "A quick look at Harbour: from new invoice to sent in 43 seconds."
        property string post: "Invoices used to eat my Friday. Here is the whole thing in Harbour, start to finish, in under a minute."
        property bool isWritten: true
        property bool isKept: false
        property bool isWriting: false
        property bool canWrite: true
        property string origin: "Written by your language model."

        function write() { app.note("writeCopy") }
        function keep() { app.note("keepCopy"); isKept = true }
    }
    property QtObject updates: QtObject {
        property string version: "1.0.0"
        property bool isChecking: false

        function check() { app.note("check") }
    }
    property QtObject shortcuts: QtObject {
        property string recordingAction
        property var table: ({
            toggleRecording: ["Super", "Alt", "R"], capturePanel: ["Super", "Alt", "5"],
            recordScreen: ["Ctrl", "N"], recordWindow: ["Ctrl", "Shift", "N"], recordArea: ["Ctrl", "Alt", "N"],
            screenshotScreen: ["Super", "Ctrl", "1"], screenshotWindow: ["Super", "Ctrl", "2"],
            screenshotArea: ["Super", "Ctrl", "3"], scrollingCapture: ["Super", "Ctrl", "4"],
            recordings: ["Ctrl", "L"], exportVideo: ["Ctrl", "E"], copyVideo: ["Ctrl", "Shift", "C"],
            toggleSidebar: ["Ctrl", "Alt", "I"]
        })
        property var groups: [
            { name: "Anywhere", rows: rows([["toggleRecording", "Start / stop recording"], ["capturePanel", "Capture panel"]]) },
            { name: "Record", rows: rows([["recordScreen", "Record screen"], ["recordWindow", "Record a window"], ["recordArea", "Record an area"]]) },
            { name: "Screenshot", rows: rows([["screenshotScreen", "Screenshot screen"], ["screenshotWindow", "Screenshot a window"], ["screenshotArea", "Screenshot an area"], ["scrollingCapture", "Scrolling capture"]]) },
            { name: "Editor", rows: rows([["recordings", "Recordings"], ["exportVideo", "Export video"], ["copyVideo", "Copy video to clipboard"], ["toggleSidebar", "Show / hide settings sidebar"]]) }
        ]

        function rows(list) {
            return list.map(row => ({ action: row[0], title: row[1], keys: table[row[0]], isDefault: true,
                defaultText: table[row[0]].join("+"), conflict: "", isRegistered: true }))
        }
        function keys(action) { return table[action] ?? [] }
        function sequence(action) { const all = keys(action); return all.includes("Super") ? "" : all.join("+") }
        function title(action) { return action }
        function startRecording(action) { recordingAction = action }
        function stopRecording() { recordingAction = "" }
        function pressed(key, modifiers, scanCode) { app.note("pressed " + key + " " + modifiers); recordingAction = ""; return true }
        function reset(action) { app.note("reset " + action) }
        function resetAll() { app.note("resetAll") }
    }
    property ListModel windows: ListModel {
        property bool isLoading: false

        function refresh() { app.note("refreshWindows") }
    }
    property ListModel library: ListModel {
        id: library

        property string search
        property string selected
        property string renaming
        property bool isLoading: false
        readonly property int totalCount: count
        readonly property int selectedRow: {
            for (let i = 0; i < count; ++i)
                if (get(i).path === selected)
                    return i
            return -1
        }
        readonly property var selectedItem: selectedRow < 0 ? ({}) : ({
            path: selected, name: get(selectedRow).name, appName: get(selectedRow).appName, date: new Date(2026, 5, 12, 10, 42),
            duration: get(selectedRow).duration, hasRender: get(selectedRow).hasRender, film: selected.replace(".zento", ".mp4")
        })

        function select(path) {
            selected = path
            for (let i = 0; i < count; ++i)
                setProperty(i, "isSelected", get(i).path === path)
        }
        function rename(path, text) { app.note("rename " + text) }
        function moveToTrash(path) { app.note("moveToTrash " + path) }
        function revealSession(path) { app.note("revealSession") }
        function revealRender() { app.note("revealRender") }
        function copyRenderToClipboard() { app.note("copyRenderToClipboard") }
    }

    function fill() {
        const rows = [
            ["June invoice walkthrough", "Harbour", 43, true, "Today"], ["Customs form, second take", "Harbour", 86, false, "Today"],
            ["Route planner first look", "Wayfare", 128, true, "Yesterday"], ["Bug 412: board loses its order", "Slate Board", 31, false, "Yesterday"],
            ["Release notes for 3.2", "Inkwell", 114, true, "Last week"], ["Setting up the command line", "Terminal", 192, true, "Last week"],
            ["Onboarding mail, new design", "Postbox", 58, false, "Last week"], ["How the parser recovers", "Kite Editor", 277, true, "Last week"]
        ]
        rows.forEach((row, index) => library.append({
            path: "/recordings/" + index + ".zento", name: row[0], title: row[0], section: row[4], duration: row[2],
            appName: row[1], hasRender: row[3], film: "/recordings/" + index + ".mp4", isSelected: index === 0
        }))
        library.select("/recordings/0.zento")
        const names = [["Invoices", "Harbour"], ["parser.cpp", "Kite Editor"], ["Lisbon to Porto", "Wayfare"],
            ["Sprint 24", "Slate Board"], ["Onboarding mail, new design", "Postbox"], ["make test", "Terminal"]]
        names.forEach((name, index) => windows.append({ windowId: index + 1, title: name[0], application: name[1], thumbnail: "there", aspect: 1.78 }))
    }
}

import QtQuick
import Zento

// One question with two answers.
Sheet {
    id: sheet

    readonly property var question: App.question

    sheetWidth: 440
    firstFocus: reject
    visible: question.isOpen
    onClosed: if (question.isOpen) question.reject()
    contentItem: Item {
        implicitHeight: words.y + words.implicitHeight + 20 + 32 + 24
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.question.text
        Accessible.description: sheet.question.detail
        Rectangle {
            x: 24
            y: 24
            width: 40
            height: 40
            radius: 12
            color: sheet.question.isDestructive ? Theme.dangerSoft : Theme.accentSoft
            Icon {
                anchors.centerIn: parent
                name: sheet.question.isDestructive ? "trash" : "info"
                color: sheet.question.isDestructive ? Theme.danger : Theme.accent
            }
        }
        Column {
            id: words

            x: 80
            y: 24
            width: parent.width - 104
            spacing: 4
            Label {
                width: parent.width
                text: sheet.question.text
                type: Theme.titleType
                wrapMode: Text.Wrap
            }
            Label {
                width: parent.width
                text: sheet.question.detail
                color: Theme.textSecondary
                wrapMode: Text.Wrap
            }
        }
        Row {
            anchors.right: parent.right
            anchors.rightMargin: 24
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 24
            spacing: 8
            Button {
                id: reject

                overlay: true
                text: sheet.question.rejectText
                onClicked: sheet.question.reject()
            }
            Button {
                kind: sheet.question.isDestructive ? Button.Danger : Button.Primary
                text: sheet.question.acceptText
                onClicked: sheet.question.accept()
            }
        }
    }
}

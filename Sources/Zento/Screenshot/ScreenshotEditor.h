#pragma once

#include "Zento/Model/FileServices.h"
#include "Zento/Model/Worker.h"
#include "Zento/Screenshot/ShotDrawing.h"
#include "Zento/Screenshot/ShotEditing.h"
#include "Zento/Screenshot/ShotOutput.h"
#include "Zento/Screenshot/ShotPlacement.h"
#include "Zento/Screenshot/ShotPresets.h"
#include "ZentoCapture/ScreenshotTool.h"

#include <QImage>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <vector>

namespace zento {

/// What an editor works with. All of it outlives the editor.
struct EditorPorts {
    Worker& drawing;                    // the picture on the screen
    Worker& output;                     // pictures at full resolution
    FileServices* files = nullptr;      // null: nothing to share with
    StyleSpec style;                    // of the user's films: the preset "match"
    std::optional<std::string> desktop; // the desktop's picture
    std::vector<ShotPresets::Picture> wallpapers;
    QString exportFolder;  // keeps what was dragged out or shared
    QString saveTo;        // a file that "Save" writes without asking; empty asks
    QString doubt;         // a sentence about the shot itself; empty without one
    ShotDocument document; // what is on it already
};

/// One screenshot with its editor: what the window shows and does. Places are points of the view.
///
/// The picture is drawn beside the main thread, always from the newest document; what changed
/// meanwhile is drawn next.
///
/// Threading: the main thread.
class ScreenshotEditor : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString sizeText READ sizeText NOTIFY changed)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY changed)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY changed)
    Q_PROPERTY(bool canShare READ canShare CONSTANT)
    /// {id, key, help}
    Q_PROPERTY(QVariantList tools READ tools CONSTANT)
    Q_PROPERTY(QString tool READ tool WRITE setTool NOTIFY changed)
    Q_PROPERTY(QStringList palette READ palette CONSTANT)
    Q_PROPERTY(QString color READ color WRITE setColor NOTIFY changed)
    Q_PROPERTY(double strokeWidth READ strokeWidth WRITE setStrokeWidth NOTIFY changed)
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY changed)
    Q_PROPERTY(bool hasCrop READ hasCrop NOTIFY changed)
    /// The ends that can be dragged, and the frame of a selected mark that has none.
    Q_PROPERTY(QVariantList handles READ handles NOTIFY changed)
    Q_PROPERTY(QRectF selectionFrame READ selectionFrame NOTIFY changed)
    Q_PROPERTY(QRectF cropFrame READ cropFrame NOTIFY changed) // empty: none is being drawn
    /// The text that is being written: {x, baseline, size, color}; empty without one.
    Q_PROPERTY(QVariantMap writing READ writing NOTIFY changed)
    Q_PROPERTY(QStringList presetGroups READ presetGroups CONSTANT)
    Q_PROPERTY(int presetGroup READ presetGroup WRITE setPresetGroup NOTIFY styleChanged)
    /// {value, name, address} of the group; the address is a swatch's.
    Q_PROPERTY(QVariantList presets READ presets NOTIFY styleChanged)
    Q_PROPERTY(QString presetID READ presetID WRITE setPresetID NOTIFY styleChanged)
    Q_PROPERTY(bool isBare READ isBare NOTIFY styleChanged)
    Q_PROPERTY(double padding READ padding WRITE setPadding NOTIFY styleChanged)
    Q_PROPERTY(double cornerRadius READ cornerRadius WRITE setCornerRadius NOTIFY styleChanged)
    Q_PROPERTY(double shadowOpacity READ shadowOpacity WRITE setShadowOpacity NOTIFY styleChanged)
    Q_PROPERTY(QImage picture READ picture NOTIFY pictureChanged)
    Q_PROPERTY(QRectF pictureFrame READ pictureFrame NOTIFY pictureChanged)
    Q_PROPERTY(QString savedNote READ savedNote NOTIFY noted)
    Q_PROPERTY(QString saveTo READ saveTo CONSTANT)
    Q_PROPERTY(QString notice READ notice NOTIFY changed) // about how it is shown; empty without
    Q_PROPERTY(QString doubt READ doubt CONSTANT) // about the shot itself; empty without one

public:
    ScreenshotEditor(Shot shot, EditorPorts ports, QObject* parent = nullptr);
    ~ScreenshotEditor() override;

    QString sizeText() const;
    bool canUndo() const { return m_editing.canUndo(); }
    bool canRedo() const { return m_editing.canRedo(); }
    bool canShare() const { return m_output.canShare(); }
    static QVariantList tools();
    QString tool() const;
    static QStringList palette();
    QString color() const { return QString::fromStdString(m_editing.colorHex()); }
    double strokeWidth() const { return m_editing.strokeWidth(); }
    bool hasSelection() const { return m_editing.selected() != nullptr; }
    bool hasCrop() const { return m_editing.document().crop.has_value(); }
    QVariantList handles() const;
    QRectF selectionFrame() const;
    QRectF cropFrame() const;
    QVariantMap writing() const;
    QStringList presetGroups() const;
    int presetGroup() const { return m_presetGroup; }
    QVariantList presets() const;
    QString presetID() const { return m_presetID; }
    bool isBare() const { return m_style.bare; }
    double padding() const { return m_style.padding; }
    double cornerRadius() const { return m_style.cornerRadius; }
    double shadowOpacity() const { return m_style.shadowOpacity; }
    const QImage& picture() const { return m_picture; }
    QRectF pictureFrame() const;
    QString savedNote() const { return m_savedNote; }
    QString notice() const;
    QString saveTo() const { return m_ports.saveTo; }
    QString doubt() const { return m_ports.doubt; }

    const ShotEditing& editing() const { return m_editing; }
    const ShotStyle& style() const { return m_style; }

    void setTool(const QString& id); // an unknown one is ignored
    void setColor(const QString& color);
    void setStrokeWidth(double width);
    void setPresetGroup(int group);
    void setPresetID(const QString& id); // an unknown one is ignored
    void setPadding(double padding);
    void setCornerRadius(double radius);
    void setShadowOpacity(double opacity);

    /// `density`: device pixels for a point.
    Q_INVOKABLE void setView(const QSizeF& size, double density);
    Q_INVOKABLE void press(const QPointF& point);
    Q_INVOKABLE void drag(const QPointF& point);
    Q_INVOKABLE void release(const QPointF& point);
    /// True for a tool's key, which chooses it.
    Q_INVOKABLE bool pressKey(const QString& text);
    Q_INVOKABLE void setTextInput(const QString& text);
    Q_INVOKABLE void commitText();
    Q_INVOKABLE void deleteSelection();
    Q_INVOKABLE void uncrop();
    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();
    /// True when the window is to close.
    Q_INVOKABLE bool escape();

    Q_INVOKABLE void copy();
    Q_INVOKABLE QString proposedPath() const;
    Q_INVOKABLE void save(const QString& path);
    /// Runs until the drop.
    Q_INVOKABLE void startDrag();
    Q_INVOKABLE void openWith();
    Q_INVOKABLE void composeMail();

    /// The window is closed: the editor deletes itself when what is under way is done.
    Q_INVOKABLE void close();

    ShotExport shotExport() const;

Q_SIGNALS:
    void changed();
    void styleChanged();
    void pictureChanged();
    void noted();                         // `savedNote` was written, perhaps again
    void failed(const QString& sentence); // an output
    void closed();

private:
    ShotLook look(ShotEditing::PendingText text) const;
    ShotPlacement placement(const ShotLook& look) const;
    QSizeF pictureSize(const ShotLook& look) const; // in the view
    Vec2 raw(const QPointF& point) const;
    double rawTolerance() const;
    void edited();
    void restyled();
    void redraw();
    void drawn(const ShotLook& look, Outcome<QImage> picture);
    void note(const QString& note);
    void finishIfClosed();

    Shot m_shot;
    EditorPorts m_ports;
    ShotEditing m_editing;
    std::vector<ShotPresetGroup> m_groups;
    ShotStyle m_style;
    QString m_presetID;
    int m_presetGroup = 0;
    QSizeF m_viewSize{1, 1};
    double m_density = 1;
    std::shared_ptr<ShotDrawing> m_drawing; // used by the drawing's worker alone
    QImage m_picture;
    std::optional<ShotLook> m_pictured; // what the picture shows
    QSize m_picturedSize;               // device pixels it is shown in
    std::optional<ShotLook> m_underWay;
    ShotOutput m_output;
    bool m_isClosed = false;
    QString m_savedNote;
};

} // namespace zento

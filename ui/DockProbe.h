#pragma once

#include "document/ProjectProbe.h"

#include <QDockWidget>
#include <QTimer>

#include <functional>
#include <optional>
#include <vector>

class QAction;
class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

/// The dock that tells what is at the place under the mouse: the flags that the exported map would
/// hold there, the layers that give them, and the zones. It can hold a place, so that the mouse can
/// go elsewhere.
class DockProbe : public QDockWidget
{
    Q_OBJECT

public:
    /// What a click on a row does; neither may be empty.
    struct Callbacks
    {
        std::function<void(Layer&)> layerChosen;
        std::function<void(Zone&)> zoneChosen;
    };

    /// document: the project; it outlives the dock.
    DockProbe(Document& document, Callbacks callbacks, QWidget* parent = nullptr);

    /// The mouse is at this place of the scene now. It is ignored while a place is held.
    void Follow(QPointF place);
    /// Holds the place, and lets it go.
    QAction* HoldAction() const { return m_hold; }

private:
    /// A row of the tree.
    struct Row
    {
        Row(int rowDepth, const QString& rowText)
            : depth(rowDepth)
            , text(rowText)
        {
        }

        int depth;
        QString text;
        QString tip;
        /// Of the layer or the territory; invalid for none.
        QColor swatch;
        /// What a click chooses; -1 for nothing.
        int layerId = -1;
        int zoneId = -1;
    };
    using Rows = std::vector<Row>;

    QWidget* MakeContents();
    void Refresh();
    void SetSeen(bool isSeen);
    void SetHeld(bool isHeld);
    void ForgetPlace();
    void Choose(const QTreeWidgetItem& item);
    void CopyText() const;
    void ShowRows(const Rows& rows);

    Rows RowsOf(const ProjectProbe::Found& found) const;
    void AddFlags(Rows& rows, const QString& title, const QVector<QString>& names,
                  const std::optional<quint32>& field, quint32 (*flagsOf)(const Layer&),
                  const ProjectProbe::Found& found) const;
    void AddLayer(Rows& rows, int depth, const ProjectProbe::FoundLayer& found) const;
    void AddZones(Rows& rows, const ProjectProbe::Found& found) const;

    Document& m_document;
    ProjectProbe m_probe;
    Callbacks m_callbacks;
    QAction* m_hold;
    QLabel* m_placeLabel = nullptr;
    QTreeWidget* m_tree = nullptr;
    /// A dock behind another tab is not, and Qt calls it visible.
    bool m_isSeen = false;
    /// The place that is shown, in scene units, and where the mouse is.
    std::optional<QPointF> m_place;
    std::optional<QPointF> m_mouse;
    /// Many changes, one refresh.
    QTimer m_refresh;
};

#pragma once

#include "canvas/ZonePreview.h"
#include "territories/Scatter.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QTimer>
#include <QVector>

#include <memory>
#include <optional>
#include <vector>

class Document;
class QGraphicsScene;
class QListWidget;

namespace Ui {
class DialogScatter;
}

/// Asks how many zones are to be placed at random, where and at what distances, and shows on the
/// map where they would be. Places are looked for in slices, so that the window stays alive.
class DialogScatter : public QDialog
{
    Q_OBJECT

public:
    /// The zones would be those of the current territory. It must be modal, because nothing else
    /// may change the layers.
    DialogScatter(const Document& document, QGraphicsScene& scene, QWidget* parent = nullptr);
    ~DialogScatter() override;
    Q_DISABLE_COPY(DialogScatter)

    /// Where the zones are to be, in scene units, once the dialog was accepted.
    const std::vector<QPointF>& Places() const { return m_scatter->Places(); }

    /// Closes the dialog as soon as all places are found, unless there is none.
    void accept() override;

private:
    void FillLists();
    void Connect();
    void ListZones();
    static QVector<int> Ticked(const QListWidget& list);
    std::vector<QImage> MasksOf(const QVector<int>& layers) const;
    void Restart();
    void GoOn();
    void ShowPlaces();
    void ShowResult();

    std::unique_ptr<Ui::DialogScatter> m_ui;
    const Document& m_document;
    ZonePreview m_preview;
    /// Those that exist.
    std::vector<WorldCircle> m_zones;
    std::optional<Scatter> m_scatter;
    /// What it was started with: the numbers, and the layers by their ids.
    QVector<QVector<int>> m_wishes;
    QTimer m_timer;
    QElapsedTimer m_sinceShown;
    bool m_isAccepting = false;
};

#pragma once

#include "canvas/HeatScale.h"
#include "territories/HeatGrid.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <memory>
#include <vector>

class Document;
class HeatItem;
class MainView;
class QLabel;

/// Colours the map by how many creatures zones place there at most for each square kilometre, and
/// explains the colours in a corner of the view. Hidden zones count too.
///
/// The grid is computed anew in slices when the hand rests after zones changed; until then the
/// colours stay as they were. While it is not shown it follows nothing.
class HeatMap : public QObject
{
    Q_OBJECT

public:
    /// Both outlive the object. Nothing is shown at first.
    HeatMap(Document& document, MainView& view);
    ~HeatMap() override;

    void SetShown(bool isShown);
    /// Whether the colours are those of the present zones.
    bool IsUpToDate() const { return !m_isStale; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Spot
    {
        WorldCircle circle;
        double creatures = 0;
    };

    void ConnectDocument();
    void Stale();
    void Wait();
    void Work();
    void Begin();
    void Show();
    QString LegendText(const HeatScale& scale) const;
    void PlaceLegend();

    Document& m_document;
    MainView& m_view;
    bool m_isShown = false;
    bool m_isStale = false;
    bool m_hasBegun = false;
    QTimer m_timer;
    /// The zones that are left to be added.
    std::vector<Spot> m_spots;
    HeatGrid m_grid;
    std::unique_ptr<HeatItem> m_item;
    QPointer<QLabel> m_legend;
};

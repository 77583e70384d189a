#include "canvas/HeatMap.h"

#include "app/ProjectSettings.h"
#include "canvas/HeatItem.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QLabel>

#include <algorithm>

namespace {

constexpr qint64 SliceNanoseconds = 4'000'000;
constexpr int RestMilliseconds = 150;
/// Cells along the longer side of the world.
constexpr int LongerSide = 256;
/// Between the legend and the edges of the map, in view pixels.
constexpr int Margin = 10;

QSizeF World()
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    return QSizeF(settings.WorldWidth(), settings.WorldHeight());
}

HeatGrid EmptyGrid()
{
    const QSizeF world = World();
    if (world.isEmpty()) {
        return {};
    }
    const QSizeF cells = world.scaled(LongerSide, LongerSide, Qt::KeepAspectRatio);
    return {cells.toSize().expandedTo({1, 1}), world};
}

QImage PictureOf(const HeatGrid& grid, const HeatScale& scale)
{
    QImage picture(grid.Cells(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < picture.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const int number = scale.ClassOf(grid.PerSquareKm(x, y));
            row[x] = number < 0 ? qRgba(0, 0, 0, 0) : scale.Color(number).rgba();
        }
    }
    return picture;
}

} // namespace

HeatMap::HeatMap(Document& document, MainView& view)
    : m_document(document)
    , m_view(view)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &HeatMap::Work);
}

HeatMap::~HeatMap()
{
    SetShown(false);
}

void HeatMap::SetShown(bool isShown)
{
    if (isShown == m_isShown) {
        return;
    }
    m_isShown = isShown;
    if (isShown) {
        m_item = std::make_unique<HeatItem>();
        m_view.Scene()->addItem(m_item.get());
        m_legend = new QLabel(&m_view);
        m_legend->setObjectName(QStringLiteral("legendHeat"));
        m_legend->setAttribute(Qt::WA_TransparentForMouseEvents);
        m_legend->setAutoFillBackground(true);
        m_legend->setFrameShape(QFrame::StyledPanel);
        m_view.viewport()->installEventFilter(this);
        ConnectDocument();
        m_isStale = true;
        m_hasBegun = false;
        m_timer.start(0);
        return;
    }
    m_timer.stop();
    m_document.disconnect(this);
    m_document.Types().model()->disconnect(this);
    m_view.Scene()->disconnect(this);
    m_view.viewport()->removeEventFilter(this);
    m_item.reset();
    delete m_legend;
    m_spots = {};
    m_grid = HeatGrid();
    m_isStale = false;
}

void HeatMap::ConnectDocument()
{
    connect(&m_document, &Document::ZonesChanged, this, &HeatMap::Stale);
    connect(&m_document, &Document::TerritoryChanged, this, &HeatMap::Stale);
    connect(&m_document, &Document::TypeChanged, this, &HeatMap::Stale);
    connect(&m_document, &Document::AboutToClear, this, &HeatMap::Stale);
    connect(&m_document, &Document::HistoryBegan, this, &HeatMap::Stale);
    connect(&m_document, &Document::HistoryChanged, this, [this] {
        if (m_isStale) {
            Wait();
        }
    });
    const QAbstractItemModel* types = m_document.Types().model();
    connect(types, &QAbstractItemModel::rowsInserted, this, &HeatMap::Stale);
    connect(types, &QAbstractItemModel::rowsRemoved, this, &HeatMap::Stale);
    connect(m_view.Scene(), &QGraphicsScene::sceneRectChanged, this, &HeatMap::Stale);
}

void HeatMap::Stale()
{
    m_isStale = true;
    m_hasBegun = false;
    Wait();
}

void HeatMap::Wait()
{
    if (!m_hasBegun) {
        m_timer.start(RestMilliseconds);
    }
}

void HeatMap::Work()
{
    if (m_document.IsBusy() || m_document.IsApplying()) {
        m_timer.start(RestMilliseconds);
        return;
    }
    if (!m_hasBegun) {
        Begin();
    } else {
        QElapsedTimer clock;
        clock.start();
        while (!m_spots.empty() && clock.nsecsElapsed() < SliceNanoseconds) {
            m_grid.Add(m_spots.back().circle, m_spots.back().creatures);
            m_spots.pop_back();
        }
    }
    if (!m_spots.empty()) {
        m_timer.start(0);
    } else {
        Show();
    }
}

/// Takes the zones as plain numbers: they may change and go between two slices.
void HeatMap::Begin()
{
    m_hasBegun = true;
    m_grid = EmptyGrid();
    m_spots.clear();
    const WorldScale scale(ProjectSettings::Instance());
    const QVector<TerritoryType*> types = m_document.Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            for (const Zone* zone : territory->Zones()) {
                const SpawnCounts& counts = zone->Counts();
                m_spots.push_back(
                    {InWorld(zone->Record(), scale), double(counts.staticMax) + counts.dynamicMax});
            }
        }
    }
}

void HeatMap::Show()
{
    m_isStale = false;
    const HeatScale scale(m_grid.Highest());
    m_item->Show(PictureOf(m_grid, scale), m_view.sceneRect());
    m_legend->setText(LegendText(scale));
    m_legend->adjustSize();
    m_legend->show();
    PlaceLegend();
}

QString HeatMap::LegendText(const HeatScale& scale) const
{
    QString rows;
    for (int number = scale.Count() - 1; number >= 0; --number) {
        rows += QStringLiteral("<tr><td bgcolor='%1'>&nbsp;&nbsp;&nbsp;&nbsp;</td>"
                               "<td>&nbsp;%2</td></tr>")
                    .arg(scale.Color(number).name(), scale.Label(number));
    }
    if (rows.isEmpty()) {
        rows = QStringLiteral("<tr><td>%1</td></tr>").arg(tr("No creatures"));
    }
    return QStringLiteral("<b>%1</b><table cellspacing='2'>%2</table>")
        .arg(tr("Creatures per km², at most"), rows);
}

void HeatMap::PlaceLegend()
{
    const QRect map = m_view.viewport()->geometry();
    const QPoint corner(m_legend->width() + Margin, m_legend->height() + Margin);
    m_legend->move(map.bottomRight() + QPoint(1, 1) - corner);
    m_legend->raise();
}

bool HeatMap::eventFilter(QObject* watched, QEvent* event)
{
    if (m_legend && (event->type() == QEvent::Resize || event->type() == QEvent::Move)) {
        PlaceLegend();
    }
    return QObject::eventFilter(watched, event);
}

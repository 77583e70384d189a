#include "ui/dialogs/DialogScatter.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "ui/NameList.h"
#include "ui/widgets/WheelFocus.h"
#include "ui_DialogScatter.h"

#include <QGraphicsScene>

namespace {

QColor ColorOf(const Territory* territory)
{
    return territory ? territory->Color() : QColor(Qt::black);
}

} // namespace

DialogScatter::DialogScatter(const Document& document, QGraphicsScene& scene, QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogScatter>())
    , m_document(document)
    , m_preview(ColorOf(document.CurrentTerritory()))
{
    m_ui->setupUi(this);
    if (const Territory* territory = document.CurrentTerritory()) {
        setWindowTitle(tr("Scatter zones in %1").arg(ShortText(territory->text())));
    }
    scene.addItem(&m_preview);
    FillLists();
    ListZones();
    Connect();
    m_ui->spnScatterCount->setFocus();
    m_ui->spnScatterCount->selectAll();
    Restart();
}

DialogScatter::~DialogScatter() = default;

void DialogScatter::FillLists()
{
    const QVector<Layer*> layers = m_document.Layers().Layers();
    for (QListWidget* list : {m_ui->lstScatterInside, m_ui->lstScatterMinus}) {
        for (const Layer* layer : layers) {
            auto* item = new QListWidgetItem(layer->text(), list);
            item->setData(Qt::DecorationRole, layer->data(Qt::DecorationRole));
            item->setData(Qt::UserRole, layer->Id());
            item->setCheckState(Qt::Unchecked);
        }
        list->setCurrentRow(0);
    }
}

void DialogScatter::Connect()
{
    for (QSpinBox* box : {m_ui->spnScatterCount, m_ui->spnScatterDistance, m_ui->spnScatterExisting,
                          m_ui->spnScatterSeed}) {
        TakeWheelOnlyWithFocus(box);
        connect(box, qOverload<int>(&QSpinBox::valueChanged), this, &DialogScatter::Restart);
    }
    for (const QListWidget* list : {m_ui->lstScatterInside, m_ui->lstScatterMinus}) {
        connect(list, &QListWidget::itemChanged, this, &DialogScatter::Restart);
    }
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &DialogScatter::GoOn);
    connect(m_ui->btnOk, &QPushButton::clicked, this, &DialogScatter::accept);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void DialogScatter::ListZones()
{
    const WorldScale scale(ProjectSettings::Instance());
    const QVector<TerritoryType*> types = m_document.Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            for (const Zone* zone : territory->Zones()) {
                m_zones.push_back(InWorld(zone->Record(), scale));
            }
        }
    }
}

/// The ids of the ticked layers.
QVector<int> DialogScatter::Ticked(const QListWidget& list)
{
    QVector<int> ids;
    for (int row = 0; row < list.count(); ++row) {
        if (list.item(row)->checkState() == Qt::Checked) {
            ids.append(list.item(row)->data(Qt::UserRole).toInt());
        }
    }
    return ids;
}

std::vector<QImage> DialogScatter::MasksOf(const QVector<int>& layers) const
{
    std::vector<QImage> masks;
    for (const int id : layers) {
        if (const Layer* layer = m_document.Layers().LayerById(id)) {
            masks.push_back(layer->Image());
        }
    }
    return masks;
}

void DialogScatter::Restart()
{
    const int count = m_ui->spnScatterCount->value();
    const int distance = m_ui->spnScatterDistance->value();
    const int existing = m_ui->spnScatterExisting->value();
    const int seed = m_ui->spnScatterSeed->value();
    const QVector<int> inside = Ticked(*m_ui->lstScatterInside);
    const QVector<int> outside = Ticked(*m_ui->lstScatterMinus);
    // Spin boxes tell of Enter as if it were a change.
    const QVector<QVector<int>> wishes{{count, distance, existing, seed}, inside, outside};
    if (wishes == m_wishes) {
        return;
    }
    m_wishes = wishes;
    m_isAccepting = false;
    const ProjectSettings& settings = ProjectSettings::Instance();
    m_scatter.emplace(ScatterTask{settings.LayerSize(), WorldScale(settings), MasksOf(inside),
                                  MasksOf(outside), m_zones, static_cast<double>(distance),
                                  static_cast<double>(existing), count,
                                  static_cast<quint32>(seed)});
    m_ui->lblScatterResult->setText(tr("Looking for places…"));
    m_ui->btnOk->setEnabled(true);
    m_sinceShown.start();
    m_timer.start();
}

void DialogScatter::GoOn()
{
    constexpr int sliceMilliseconds = 5;
    constexpr int sliceSteps = 20;
    constexpr int showMilliseconds = 100;
    QElapsedTimer clock;
    clock.start();
    bool isFinished = false;
    do {
        isFinished = m_scatter->Advance(sliceSteps);
    } while (!isFinished && !clock.hasExpired(sliceMilliseconds));
    if (!isFinished) {
        if (m_sinceShown.hasExpired(showMilliseconds)) {
            ShowPlaces();
        }
        return;
    }
    m_timer.stop();
    ShowPlaces();
    ShowResult();
    if (m_isAccepting) {
        m_isAccepting = false;
        accept();
    }
}

void DialogScatter::ShowPlaces()
{
    const auto pixelsPerMetre = static_cast<qreal>(ProjectSettings::Instance().PixelsPerMetreX());
    m_preview.Show(m_scatter->Places(),
                   pixelsPerMetre * static_cast<qreal>(m_document.ZoneTemplate().radius));
    m_sinceShown.start();
}

void DialogScatter::ShowResult()
{
    const auto found = static_cast<int>(m_scatter->Places().size());
    const int wanted = m_ui->spnScatterCount->value();
    m_ui->lblScatterResult->setText(found < wanted
                                        ? tr("Only %1 of %2 zones fit.").arg(found).arg(wanted)
                                        : tr("All %1 zones fit.").arg(wanted));
    m_ui->btnOk->setEnabled(found > 0);
}

void DialogScatter::accept()
{
    if (!m_scatter->IsFinished()) {
        m_isAccepting = true;
    } else if (!m_scatter->Places().empty()) {
        QDialog::accept();
    }
}

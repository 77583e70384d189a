#include "ui/DockStatistics.h"

#include "app/Log.h"
#include "app/OutputFile.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/ProjectNumbers.h"
#include "layers/AreaScale.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "ui/FileDialogs.h"
#include "ui/NumbersView.h"
#include "ui/widgets/ComboBoxLayers.h"
#include "ui/widgets/WheelFocus.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include <utility>

namespace {

/// Percent of the pixels of a layer.
QString ShareOf(qint64 pixels, const std::optional<PixelNumbers>& layer)
{
    constexpr double percent = 100;
    const double share =
        layer && layer->pixels > 0 ? percent * double(pixels) / double(layer->pixels) : 0;
    return QString::number(share, 'f', 2);
}

} // namespace

DockStatistics::DockStatistics(Document& document, ProjectNumbers& numbers,
                               std::function<void(const QRectF& area)> goTo, QWidget* parent)
    : QDockWidget(tr("Numbers"), parent)
    , m_document(document)
    , m_numbers(numbers)
    , m_goTo(std::move(goTo))
{
    setObjectName(QStringLiteral("DockStatistics"));
    setWidget(MakeContents());
    connect(this, &QDockWidget::visibilityChanged, this, &DockStatistics::SetSeen);
    connect(&numbers, &ProjectNumbers::Changed, this, &DockStatistics::Refresh);
}

QWidget* DockStatistics::MakeContents()
{
    m_tabs = new QTabWidget;
    m_tabs->setObjectName(QStringLiteral("tabNumbers"));
    // A dock that is shown gets the least width.
    constexpr int widthOfNumbers = 270;
    m_tabs->setMinimumWidth(widthOfNumbers);
    AddTable(m_layers, "viewLayerNumbers", LayerNumberColumns());
    AddTable(m_flags, "viewFlagNumbers", FlagNumberColumns());
    AddTable(m_zones, "viewZoneNumbers", ZoneNumberColumns());
    m_tabs->addTab(MakeLayersPage(), tr("Layers"));
    m_tabs->addTab(m_flags.view, tr("Flags"));
    m_tabs->addTab(m_zones.view, tr("Zones"));

    m_save = new QPushButton(tr("Save as CSV…"));
    m_save->setObjectName(QStringLiteral("btnNumbersSave"));
    m_save->setToolTip(tr("Save the table that is shown for a spreadsheet, when it is counted"));
    connect(m_save, &QPushButton::clicked, this, &DockStatistics::Save);
    connect(m_tabs, &QTabWidget::currentChanged, this, &DockStatistics::ShowSave);

    auto* contents = new QWidget;
    auto* layout = new QVBoxLayout(contents);
    layout->addWidget(m_tabs);
    layout->addWidget(m_save, 0, Qt::AlignLeft);
    return contents;
}

void DockStatistics::AddTable(Table& table, const char* name,
                              const QVector<NumbersModel::Column>& columns)
{
    table.view = new NumbersView(columns);
    table.view->setObjectName(QLatin1String(name));
    connect(table.view, &QAbstractItemView::doubleClicked, this,
            [this, &table](const QModelIndex& index) { GoTo(table, index); });
}

QWidget* DockStatistics::MakeLayersPage()
{
    const auto makeCombo = [this](const char* name) {
        auto* combo = new ComboBoxLayers;
        combo->setObjectName(QLatin1String(name));
        combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        combo->setToolTip(tr("Tells what two layers have in common"));
        combo->setAccessibleName(tr("Layer of the overlap"));
        combo->setModel(m_document.Layers().model());
        TakeWheelOnlyWithFocus(combo);
        connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                &DockStatistics::ChooseOverlap);
        return combo;
    };
    m_overlap = new QLabel;
    m_overlap->setObjectName(QStringLiteral("lblOverlap"));
    m_overlap->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_overlap->setWordWrap(true);
    m_overlapFirst = makeCombo("cboOverlapFirst");
    m_overlapSecond = makeCombo("cboOverlapSecond");

    auto* page = new QWidget;
    auto* layout = new QGridLayout(page);
    layout->addWidget(m_layers.view, 0, 0, 1, 2);
    layout->addWidget(new QLabel(tr("Overlap of")), 1, 0);
    layout->addWidget(m_overlapFirst, 1, 1);
    layout->addWidget(new QLabel(tr("and")), 2, 0);
    layout->addWidget(m_overlapSecond, 2, 1);
    layout->addWidget(m_overlap, 3, 0, 1, 2);
    layout->setColumnStretch(1, 1);
    return page;
}

void DockStatistics::SetSeen(bool isSeen)
{
    m_isSeen = isSeen;
    m_numbers.Want(*this, isSeen ? ProjectNumbers::Wanted::All : ProjectNumbers::Wanted::Nothing);
    Refresh();
}

void DockStatistics::Refresh()
{
    if (!m_isSeen) {
        return;
    }
    Show(m_layers, LayerNumberRows(m_document, m_numbers));
    Show(m_flags, FlagNumberRows(m_numbers));
    Show(m_zones, ZoneNumberRows(m_document, m_numbers));
    ShowSave();
    // A layer that was moved is in another row of the boxes.
    ChooseOverlap();
}

void DockStatistics::Show(Table& table, const NumberRows& rows)
{
    table.subjects = rows.subjects;
    table.view->SetRows(rows.rows);
}

const NumbersView& DockStatistics::Shown() const
{
    const QWidget* page = m_tabs->currentWidget();
    for (const Table* table : {&m_flags, &m_zones}) {
        if (page == table->view) {
            return *table->view;
        }
    }
    return *m_layers.view;
}

/// A file tells nobody that numbers were missing.
void DockStatistics::ShowSave()
{
    m_save->setEnabled(Shown().IsCounted());
}

void DockStatistics::ChooseOverlap()
{
    if (m_isSeen) {
        m_numbers.SetOverlap(m_document.Layers().LayerAt(m_overlapFirst->currentIndex()),
                             m_document.Layers().LayerAt(m_overlapSecond->currentIndex()));
        ShowOverlap();
    }
}

void DockStatistics::ShowOverlap()
{
    const Layer* first = m_document.Layers().LayerAt(m_overlapFirst->currentIndex());
    const Layer* second = m_document.Layers().LayerAt(m_overlapSecond->currentIndex());
    if (!first || !second || first == second) {
        m_overlap->setText(tr("Choose two layers."));
        return;
    }
    const LayerNumbers& layers = m_numbers.Layers();
    const std::optional<qint64> pixels = layers.Overlap();
    if (!pixels) {
        m_overlap->setText(tr("…"));
        return;
    }
    const ProjectSettings& settings = ProjectSettings::Instance();
    const AreaScale scale(settings.LayerSize(), {settings.WorldWidth(), settings.WorldHeight()});
    m_overlap->setText(
        tr("%1 pixels, %2 km², %3 % of the world; %4 % of the first layer, %5 % of the second")
            .arg(QString::number(*pixels), QString::number(scale.SquareKm(*pixels), 'f', 3),
                 QString::number(scale.Percent(*pixels), 'f', 2),
                 ShareOf(*pixels, layers.OfLayer(first->Id())),
                 ShareOf(*pixels, layers.OfLayer(second->Id()))));
}

void DockStatistics::GoTo(const Table& table, const QModelIndex& index)
{
    const int row = table.view->SourceRow(index);
    const QRectF area = row >= 0 && row < table.subjects.size()
                            ? AreaOf(table.subjects.at(row), m_document, m_numbers)
                            : QRectF();
    if (!area.isEmpty()) {
        m_goTo(area);
    }
}

void DockStatistics::Save()
{
    if (m_document.IsBusy()) {
        return;
    }
    const QString path = AskForFile(this, FilePurpose::SaveNumbers);
    if (path.isEmpty()) {
        return;
    }
    OutputFile file(path);
    if (file.Open() && file.Write(Shown().Csv()) && file.Commit()) {
        LogSuccess(tr("Numbers saved to file '%1'.").arg(path));
    } else {
        LogError(tr("Failed to write file '%1': %2").arg(path, file.ErrorString()));
    }
}

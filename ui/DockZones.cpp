#include "ui/DockZones.h"

#include "app/ProjectSettings.h"
#include "canvas/MainScene.h"
#include "document/Document.h"
#include "document/edits/TerritoryEdits.h"
#include "document/edits/ZoneEdits.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "territories/ZoneCell.h"
#include "ui/NameList.h"
#include "ui/ZoneSheets.h"
#include "ui_DockZones.h"

#include <QCompleter>
#include <QHeaderView>
#include <QLocale>
#include <QScopedValueRollback>
#include <QShortcut>

#include <algorithm>
#include <utility>

namespace {

/// Twenty thousand is "20,000".
QString CountText(int count)
{
    return QLocale(QLocale::English, QLocale::UnitedKingdom).toString(count);
}

int WidthOf(ZoneColumn column)
{
    switch (column) {
    case ZoneColumn::Type:
    case ZoneColumn::Territory:
    case ZoneColumn::Usage:
        return 120;
    case ZoneColumn::Problems:
        return 200;
    default:
        return 80;
    }
}

/// Lists how a filter may go on. No entry is current until the user moves to one. Otherwise Enter
/// after a space would choose the first entry instead of selecting zones.
class FilterCompleter : public QCompleter
{
public:
    using QCompleter::QCompleter;

    /// No text begins like this.
    QStringList splitPath(const QString& /*path*/) const override { return {QStringLiteral("\n")}; }
};

/// "Change static max of zone".
QString StepText(ZoneColumn column)
{
    return DockZones::tr("Change %1 of zone").arg(Title(column).toLower());
}

} // namespace

DockZones::DockZones(Document& document, MainScene& scene, ZoneSheets& sheets,
                     std::function<void(const Zone&)> show, QWidget* parent)
    : QDockWidget(parent)
    , m_document(document)
    , m_scene(scene)
    , m_sheets(sheets)
    , m_show(std::move(show))
    , m_ui(std::make_unique<Ui::DockZones>())
    , m_model(document.Types())
    , m_completer(new FilterCompleter(&m_completions, this))
{
    m_ui->setupUi(this);
    TableViewZones& view = *m_ui->viewZones;
    view.setModel(&m_model);
    // The order of the file, until a header is clicked.
    view.horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    view.setSortingEnabled(true);
    for (std::size_t i = 0; i < ZoneColumns.size(); ++i) {
        const int column = static_cast<int>(i);
        view.setColumnWidth(column, std::max(WidthOf(ZoneColumns.at(i)),
                                             view.horizontalHeader()->sectionSizeHint(column)));
    }
    view.horizontalHeader()->setStretchLastSection(true);
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_ui->txtZonesFilter->setCompleter(m_completer);
    ConnectProject();
    ConnectTable();
    ConnectFilter();
    ShowCounts();
}

DockZones::~DockZones()
{
    m_ui->viewZones->selectionModel()->disconnect(this);
    m_model.disconnect(this);
}

void DockZones::ConnectProject()
{
    connect(this, &QDockWidget::visibilityChanged, this, &DockZones::SetSeen);
    connect(&m_document, &Document::ZonesChanged, this, &DockZones::NoteZones);
    connect(&m_document, &Document::TerritoryChanged, this, &DockZones::NoteNames);
    connect(&m_document, &Document::TypeChanged, this, &DockZones::NoteNames);
    // Sent after each edit, undo and redo, and when the project can be edited or not any more.
    connect(&m_document, &Document::HistoryChanged, this, &DockZones::Update);
    connect(&m_document, &Document::AboutToClear, this, &DockZones::Clear);
    connect(&m_document, &Document::HistoryBegan, this, &DockZones::Reload);
    connect(&m_scene, &MainScene::ZoneSelected, this, &DockZones::ShowSelection);
    widget()->setEnabled(m_document.IsEditable());
}

void DockZones::ConnectTable()
{
    TableViewZones* view = m_ui->viewZones;
    m_model.SetCellEditor([this](Zone& zone, ZoneColumn column, const QString& text) {
        return EditCell(zone, column, text);
    });
    connect(&m_model, &QAbstractItemModel::modelAboutToBeReset, this, &DockZones::KeepCurrent);
    connect(&m_model, &QAbstractItemModel::modelReset, this, &DockZones::RestoreCurrent);
    connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DockZones::TakeSelection);
    connect(view, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& index) {
        const Zone* zone = m_model.ZoneAt(index.row());
        if (zone && m_show) {
            m_show(*zone);
        }
    });
    connect(view, &TableViewZones::CopyWanted, this, &DockZones::Copy);
    connect(view, &TableViewZones::PasteWanted, this, &DockZones::Paste);
    connect(view, &TableViewZones::RemoveWanted, this, &DockZones::Remove);
}

void DockZones::ConnectFilter()
{
    QLineEdit* line = m_ui->txtZonesFilter;
    connect(line, &QLineEdit::textChanged, this, &DockZones::Filter);
    connect(line, &QLineEdit::textEdited, this, &DockZones::Complete);
    connect(line, &QLineEdit::returnPressed, this, &DockZones::SelectShown);
    const auto* clear = new QShortcut(Qt::Key_Escape, line, nullptr, nullptr, Qt::WidgetShortcut);
    connect(clear, &QShortcut::activated, line, &QLineEdit::clear);
    connect(m_ui->chkZonesCurrent, &QCheckBox::toggled, this, &DockZones::FilterTerritory);
}

void DockZones::BeginFilter()
{
    // It may share its place with other docks.
    raise();
    m_ui->txtZonesFilter->setFocus();
    m_ui->txtZonesFilter->selectAll();
    if (isFloating()) {
        activateWindow();
    }
}

void DockZones::SetSeen(bool isSeen)
{
    const bool wasSeen = std::exchange(m_isSeen, isSeen);
    PauseProblems();
    if (isSeen && !wasSeen) {
        Reload();
    }
}

/// Rows that nobody sees are old, and taken anew before they are seen.
void DockZones::PauseProblems()
{
    m_model.PauseProblems(!m_isSeen || m_document.IsHandBusy());
}

void DockZones::Reload()
{
    m_changed.clear();
    m_areNamesChanged = false;
    if (m_isSeen) {
        m_model.Reload();
        Narrow();
    }
}

void DockZones::Clear()
{
    m_changed.clear();
    m_areNamesChanged = false;
    m_model.Clear();
    m_ui->txtZonesFilter->clear();
    ShowNotice({});
    ShowCounts();
}

void DockZones::NoteZones(Territory* territory)
{
    if (m_isSeen && territory) {
        m_changed.emplace_back(territory);
    }
    if (!m_document.IsApplying()) {
        Update();
    }
}

void DockZones::NoteNames()
{
    m_areNamesChanged = m_isSeen;
    if (!m_document.IsApplying()) {
        Update();
    }
}

/// Shows what changed since the last time.
void DockZones::Update()
{
    widget()->setEnabled(m_document.IsEditable());
    PauseProblems();
    const std::vector<Tracked<Territory>> changed = std::exchange(m_changed, {});
    const bool areNamesChanged = std::exchange(m_areNamesChanged, false);
    if (!m_isSeen) {
        return;
    }
    if (areNamesChanged) {
        m_model.FollowNames();
    }
    std::vector<const Territory*> followed;
    for (const Tracked<Territory>& territory : changed) {
        const bool isFollowed =
            std::find(followed.begin(), followed.end(), territory.Get()) != followed.end();
        if (territory && !isFollowed) {
            followed.push_back(territory);
        }
    }
    m_model.FollowZones(followed);
    if (areNamesChanged || !followed.empty()) {
        ShowCounts();
    }
}

void DockZones::Filter()
{
    m_model.SetFilter(m_ui->txtZonesFilter->text());
    Narrow();
    const QStringList unfinished = m_model.UnfinishedTerms();
    constexpr int longest = 100;
    ShowNotice(unfinished.isEmpty() ? QString()
                                    : tr("'%1' is not finished and hides nothing.")
                                          .arg(ShortText(unfinished.first(), longest)));
}

void DockZones::FilterTerritory()
{
    const bool isOnly = m_ui->chkZonesCurrent->isChecked();
    m_model.SetOnly(isOnly ? std::optional<const Territory*>(m_document.CurrentTerritory())
                           : std::nullopt);
    Narrow();
}

void DockZones::FollowTerritory()
{
    if (m_ui->chkZonesCurrent->isChecked()) {
        FilterTerritory();
    }
}

/// Deselects what the filter hides.
void DockZones::Narrow()
{
    const QVector<Zone*> selected = m_scene.SelectedZones();
    QVector<Zone*> kept;
    for (Zone* zone : selected) {
        if (m_model.RowOf(*zone) >= 0) {
            kept.append(zone);
        }
    }
    // A project that is being closed has no rows any more.
    if (m_isSeen && !m_model.AllRows().empty() && kept.size() != selected.size()) {
        m_scene.SelectZones(kept);
    }
    ShowCounts();
}

/// Enter in the filter's line.
void DockZones::SelectShown()
{
    const QAbstractItemView* popup = m_completer->popup();
    if (popup->isVisible() && popup->currentIndex().isValid()) {
        // It takes a completion.
        return;
    }
    m_ui->viewZones->selectAll();
    m_ui->viewZones->setFocus();
}

void DockZones::Complete(const QString& text)
{
    m_completions.setStringList(FilterCompletions(text, m_model.AllRows()));
}

QVector<Zone*> DockZones::SelectedRows() const
{
    // Rows are selected as a whole.
    std::vector<int> rows;
    const QItemSelection selection = m_ui->viewZones->selectionModel()->selection();
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.push_back(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    QVector<Zone*> zones;
    for (const int row : rows) {
        if (Zone* zone = m_model.ZoneAt(row)) {
            zones.append(zone);
        }
    }
    return zones;
}

/// The user selects rows.
void DockZones::TakeSelection()
{
    if (m_isSelecting) {
        return;
    }
    const QScopedValueRollback<bool> selecting(m_isSelecting, true);
    m_scene.SelectZones(SelectedRows());
    ShowNotice({});
    ShowCounts();
}

/// The map's selection is another.
void DockZones::ShowSelection()
{
    if (m_isSelecting || !m_isSeen) {
        return;
    }
    const QScopedValueRollback<bool> selecting(m_isSelecting, true);
    std::vector<int> rows;
    const QVector<Zone*> zones = m_scene.SelectedZones();
    for (const Zone* zone : zones) {
        const int row = m_model.RowOf(*zone);
        if (row >= 0) {
            rows.push_back(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    QItemSelection selection;
    const int lastColumn = m_model.columnCount() - 1;
    for (std::size_t first = 0; first < rows.size();) {
        std::size_t end = first + 1;
        while (end < rows.size() && rows[end] == rows[end - 1] + 1) {
            ++end;
        }
        selection.append(QItemSelectionRange(m_model.index(rows[first], 0),
                                             m_model.index(rows[end - 1], lastColumn)));
        first = end;
    }
    QItemSelectionModel* selected = m_ui->viewZones->selectionModel();
    // Qt compares each old range with each new one, so the old ones go first.
    const QModelIndex current = selected->currentIndex();
    selected->clearSelection();
    selected->select(selection, QItemSelectionModel::ClearAndSelect);
    const bool isCurrentSelected = std::binary_search(rows.begin(), rows.end(), current.row());
    if (!rows.empty() && !isCurrentSelected) {
        const QModelIndex first =
            m_model.index(rows.front(), current.isValid() ? current.column() : 0);
        selected->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
        m_ui->viewZones->scrollTo(first);
    }
    ShowCounts();
}

void DockZones::KeepCurrent()
{
    const QModelIndex current = m_ui->viewZones->currentIndex();
    m_current = current.isValid() ? m_model.ZoneAt(current.row()) : nullptr;
    m_currentColumn = current.isValid() ? current.column() : 0;
}

void DockZones::RestoreCurrent()
{
    const Zone* current = m_current;
    const int row = current ? m_model.RowOf(*current) : -1;
    if (row >= 0) {
        m_ui->viewZones->selectionModel()->setCurrentIndex(m_model.index(row, m_currentColumn),
                                                           QItemSelectionModel::NoUpdate);
    }
    m_current = nullptr;
    ShowSelection();
}

void DockZones::ShowCounts()
{
    const QVector<Zone*> selected = m_scene.SelectedZones();
    const auto hidden =
        m_model.AllRows().empty()
            ? 0
            : std::count_if(selected.begin(), selected.end(),
                            [this](const Zone* zone) { return m_model.RowOf(*zone) < 0; });
    QString text =
        tr("%1 of %2 zones, %3 selected")
            .arg(CountText(m_model.rowCount()),
                 CountText(static_cast<int>(m_model.AllRows().size())), CountText(selected.size()));
    if (hidden > 0) {
        // They were selected on the map, and edits change them.
        text += tr(", %1 of them not shown").arg(CountText(static_cast<int>(hidden)));
    }
    m_ui->lblZones->setText(text);
}

void DockZones::ShowNotice(const QString& notice)
{
    m_ui->lblZonesNotice->setText(notice);
}

bool DockZones::EditCell(Zone& zone, ZoneColumn column, const QString& text)
{
    if (!m_document.CanTravel() || !zone.Holder()) {
        return false;
    }
    const WorldScale scale(ProjectSettings::Instance());
    const ZoneCell cell = TakeCell(zone.Record(), column, text, scale);
    if (!cell.refusal.isEmpty()) {
        constexpr int longest = 200;
        ShowNotice(tr("Not taken: %1").arg(ShortText(cell.refusal, longest)));
        return false;
    }
    ShowNotice({});
    if (cell.values == zone.Values() && cell.place == zone.pos()) {
        return false;
    }
    return m_document.Do(Edits::ChangeZones(StepText(column), {{&zone, cell.values, cell.place}}));
}

void DockZones::Copy()
{
    std::vector<ZoneRow> rows;
    const QVector<Zone*> zones = SelectedRows();
    for (const Zone* zone : zones) {
        rows.push_back(m_model.RowAt(m_model.RowOf(*zone)));
    }
    if (!rows.empty()) {
        ZoneSheets::Copy(rows);
    }
}

void DockZones::Paste()
{
    ShowNotice(m_sheets.Paste([this](const Zone& zone) { return m_model.RowOf(zone) >= 0; }));
}

void DockZones::Remove()
{
    const QVector<Zone*> zones = SelectedRows();
    if (m_document.CanTravel() && !zones.isEmpty()) {
        m_scene.SelectZones(zones);
        m_scene.RemoveSelection();
    }
}

#include "document/Document.h"

#include "app/Log.h"
#include "app/Names.h"
#include "app/ProjectSettings.h"
#include "document/Formulas.h"
#include "document/LiveLayers.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/TerritoryEdits.h"
#include "territories/TerritoryType.h"

#include <QScopedValueRollback>

#include <algorithm>

Document::Document(QObject* parent)
    : QObject(parent)
    , m_formulas(std::make_unique<Formulas>(*this))
    , m_live(std::make_unique<LiveLayers>(*this))
{
    const auto editRow = [this](QStandardItem& item, const QVariant& value, int role) {
        return EditRow(item, value, role);
    };
    m_layers.model()->SetEditHandler(editRow);
    m_types.model()->SetEditHandler(editRow);
    connect(&m_history, &QUndoStack::indexChanged, this, &Document::FollowIndex);
    connect(&m_history, &QUndoStack::cleanChanged, this, &Document::HistoryChanged);
}

Document::~Document()
{
    m_history.disconnect(this);
    m_history.clear();
}

/// What a view writes into a row: a name or a check mark. Files that are being written hold the row
/// as it was before.
bool Document::EditRow(QStandardItem& item, const QVariant& value, int role)
{
    if (m_isFilesBusy) {
        return false;
    }
    if (role == Qt::CheckStateRole) {
        const bool isChecked = value.toInt() == Qt::Checked;
        if (auto* layer = dynamic_cast<Layer*>(&item)) {
            return Do(Edits::SetLayerVisible(*layer, isChecked));
        }
        return Do(Edits::SetRowChecked(item, isChecked));
    }
    const QString name = value.toString();
    const auto* territory = dynamic_cast<Territory*>(&item);
    if (territory ? name == item.text() : !IsRename(item.text(), name)) {
        return false;
    }
    return Do(Edits::Rename(item, name));
}

void Document::FollowCheckMark(QStandardItem& row)
{
    // Setting a type's mark sets its territories' marks; those changes are handled already.
    if (m_isFollowingCheckMark) {
        return;
    }
    const QScopedValueRollback<bool> following(m_isFollowingCheckMark, true);
    const bool isChecked = row.checkState() == Qt::Checked;
    if (auto* type = dynamic_cast<TerritoryType*>(&row)) {
        type->SetVisible(isChecked, CurrentTerritory());
    } else if (auto* territory = dynamic_cast<Territory*>(&row)) {
        territory->SetVisible(isChecked || territory == CurrentTerritory());
    }
}

ZoneValues Document::ZoneTemplate() const
{
    return m_zoneTemplate.value_or(ZoneValues::OfNewZone());
}

bool Document::Do(std::unique_ptr<Edit> edit)
{
    if (m_isApplying) {
        return false;
    }
    const bool setsModified = edit->SetsModified();
    if (!edit->Changes()) {
        m_live->EndStroke();
        m_formulas->TellChanges();
        if (setsModified) {
            ProjectSettings::Instance().SetModified(true);
        }
        return false;
    }
    edit->m_document = this;
    edit->m_gesture = m_gesture;
    {
        const QScopedValueRollback<bool> doing(m_isDoing, true);
        const QScopedValueRollback<bool> applying(m_isApplying, true);
        m_history.setIndex(KeptIndex());
        m_endOfKept = NoEnd;
        m_history.push(edit.release());
    }
    m_formulas->TellChanges();
    if (setsModified) {
        ProjectSettings::Instance().SetModified(true);
    }
    FitHistory();
    emit HistoryChanged();
    return true;
}

void Document::NoteChange()
{
    m_live->EndStroke();
    if (!m_isApplying) {
        m_isChangedOutside = true;
        ProjectSettings::Instance().SetModified(true);
    }
}

void Document::AnnouncePixels(Layer* layer, const QRect& rect, const raster::MaskDelta& tiles)
{
    const QScopedValueRollback<const raster::MaskDelta*> changed(
        m_changedTiles, tiles.IsSpilled() ? nullptr : &tiles);
    emit LayerChanged(layer, LayerAspect::Pixels, rect);
}

void Document::SetHandBusy(bool isBusy)
{
    if (isBusy != m_isHandBusy) {
        if (isBusy) {
            m_live->EndStroke();
        }
        m_isHandBusy = isBusy;
        emit HistoryChanged();
    }
}

void Document::SetFilesBusy(bool isBusy)
{
    m_isFilesBusy = isBusy;
    emit HistoryChanged();
}

void Document::SetEditable(bool isEditable)
{
    m_isEditable = isEditable;
    emit HistoryChanged();
}

/// The nearest state of the history that can be reached. Steps that are no longer kept do nothing.
int Document::KeptIndex() const
{
    return qBound(m_firstKept, m_history.index(), qMin(m_endOfKept, m_history.count()));
}

bool Document::CanUndo() const
{
    return CanTravel() && KeptIndex() > m_firstKept;
}

bool Document::CanRedo() const
{
    return CanTravel() && KeptIndex() < qMin(m_endOfKept, m_history.count());
}

void Document::Undo()
{
    if (CanUndo()) {
        m_history.setIndex(KeptIndex() - 1);
    }
}

void Document::Redo()
{
    if (CanRedo()) {
        m_history.setIndex(KeptIndex() + 1);
    }
}

/// The history went to another state by undo, redo or a click in its view.
void Document::FollowIndex()
{
    if (m_isDoing) {
        return;
    }
    EndGesture();
    m_formulas->TellChanges();
    const QScopedValueRollback<bool> applying(m_isApplying, true);
    ShowModified();
    FitHistory();
    const EditPlace place = m_place;
    m_place = {};
    emit Travelled(place);
    emit HistoryChanged();
}

/// Whether all steps between the present and the saved state are kept, and only steps changed the
/// project.
bool Document::CanReachSaved() const
{
    const int saved = m_history.cleanIndex();
    return !m_isChangedOutside && saved >= m_firstKept && saved <= m_endOfKept;
}

bool Document::IsAtSavedState() const
{
    return CanReachSaved() && KeptIndex() == m_history.cleanIndex();
}

/// After undo or redo the project is modified if an edit between the present and the saved state
/// sets the flag.
void Document::ShowModified()
{
    const int saved = m_history.cleanIndex();
    const int index = KeptIndex();
    bool isModified = !CanReachSaved();
    for (int i = std::min(saved, index); i < std::max(saved, index) && !isModified; ++i) {
        isModified = static_cast<const Edit*>(m_history.command(i))->SetsModified();
    }
    ProjectSettings::Instance().SetModified(isModified);
}

/// Forgets steps when the disk is full: the oldest ones, or of those that were undone the last
/// ones.
void Document::FitHistory()
{
    const std::vector<const Edit*> lost = m_memory.Fit();
    for (const Edit* edit : lost) {
        const int step = StepOf(*edit);
        if (step < m_history.index()) {
            ForgetUpTo(step);
        } else {
            ForgetFrom(step);
        }
    }
    if (!lost.empty()) {
        emit HistoryChanged();
    }
}

int Document::StepOf(const Edit& edit) const
{
    int step = 0;
    while (step < m_history.count() &&
           !static_cast<const Edit*>(m_history.command(step))->Holds(edit)) {
        ++step;
    }
    return step;
}

/// The step could not be undone. Those before it can't be undone without it.
void Document::LoseUndo(const Edit& edit)
{
    ReportLater(
        QStringLiteral("Could not undo '%1'. It and the steps before it are no longer kept.")
            .arg(edit.text()));
    ForgetUpTo(StepOf(edit));
}

void Document::LoseRedo(const Edit& edit)
{
    ReportLater(QStringLiteral("Could not redo '%1'. It and the steps after it are no longer kept.")
                    .arg(edit.text()));
    ForgetFrom(StepOf(edit));
}

/// Logging processes events, which must not meet a history on its way.
void Document::ReportLater(const QString& message)
{
    QMetaObject::invokeMethod(
        this, [message] { LogError(message); }, Qt::QueuedConnection);
}

void Document::ForgetUpTo(int step)
{
    Forget(m_firstKept, step + 1);
    m_firstKept = qMax(m_firstKept, step + 1);
}

void Document::ForgetFrom(int step)
{
    Forget(step, m_history.count());
    m_endOfKept = qMin(m_endOfKept, step);
}

void Document::Forget(int first, int end)
{
    for (int i = first; i < end; ++i) {
        // The stack hands its commands out for reading only, but they are ours.
        auto* edit = const_cast<Edit*>(static_cast<const Edit*>(m_history.command(i)));
        if (!edit->IsForgotten()) {
            edit->Forget();
        }
    }
}

void Document::Clear()
{
    emit AboutToClear();
    ClearHistory();
    SetPath({});
    m_currentLayer = nullptr;
    m_soloLayer = nullptr;
    m_lockedIds.clear();
    m_currentTerritory = nullptr;
    m_zoneTemplate.reset();
    m_layers.Clear();
    m_types.Clear();
    emit LayerMarksChanged(nullptr);
}

void Document::ClearHistory()
{
    const QScopedValueRollback<bool> doing(m_isDoing, true);
    m_history.clear();
    m_firstKept = 0;
    m_endOfKept = NoEnd;
    // What was edited cannot be taken back any more.
    m_isChangedOutside = m_isChangedOutside || ProjectSettings::Instance().IsModified();
    emit HistoryChanged();
}

void Document::BeginHistory(bool isSaved)
{
    ClearHistory();
    if (isSaved) {
        ProjectSettings::Instance().SetModified(false);
        m_isChangedOutside = false;
        m_history.setClean();
    } else {
        NoteChange();
    }
    emit HistoryBegan(isSaved);
}

void Document::SetSaved()
{
    m_isChangedOutside = false;
    m_history.setClean();
    emit Saved();
}

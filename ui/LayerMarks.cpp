#include "ui/LayerMarks.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/Formulas.h"
#include "ui/ProjectNotes.h"

#include <QFileInfo>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QPolygonF>

namespace {

const QString LockedGroup = QStringLiteral("lockedLayers");
const QString SoloGroup = QStringLiteral("soloLayer");

constexpr int IconSide = 16;

void DrawPadlock(QPainter& painter)
{
    const QRectF shackle(5.5, 2.5, 5, 8);
    painter.setPen(QPen(Qt::white, 3));
    painter.drawRoundedRect(shackle, 2.5, 2.5);
    painter.setPen(QPen(Qt::black, 1.5));
    painter.drawRoundedRect(shackle, 2.5, 2.5);
    painter.setPen(QPen(Qt::white, 1));
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(QRectF(2.5, 6.5, 11, 8), 1, 1);
}

/// A disc in the corner: with an arrow for layers that follow others, with an exclamation mark for
/// those that are not up to date, and with a cross for broken ones.
void DrawBadge(QPainter& painter, FormulaState state)
{
    const bool isBroken = state == FormulaState::Broken;
    const bool isGood = state == FormulaState::UpToDate;
    painter.setPen(QPen(Qt::white, 1));
    painter.setBrush(isGood     ? QColor(0, 110, 50)
                     : isBroken ? QColor(190, 0, 0)
                                : QColor(200, 90, 0));
    painter.drawEllipse(QRectF(7, 0.5, 8.5, 8.5));
    painter.setPen(QPen(Qt::white, 1.4));
    painter.setBrush(Qt::white);
    if (isGood) {
        painter.drawPolygon(QPolygonF({{10, 3}, {10, 6.5}, {13, 4.75}}));
    } else if (isBroken) {
        painter.drawLine(QPointF(9.7, 3.2), QPointF(12.8, 6.3));
        painter.drawLine(QPointF(9.7, 6.3), QPointF(12.8, 3.2));
    } else {
        painter.drawLine(QPointF(11.25, 2.3), QPointF(11.25, 5));
        painter.drawPoint(QPointF(11.25, 7.2));
    }
}

/// The layer's colour with what draw adds to it.
template <typename Draw>
QIcon MarkedIcon(const QColor& color, Draw draw)
{
    QIcon icon;
    for (const int scale : {1, 2}) {
        QPixmap picture(IconSide * scale, IconSide * scale);
        picture.fill(color);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scale, scale);
        draw(painter);
        painter.end();
        icon.addPixmap(picture);
        // Otherwise Qt tints it in the row that is selected.
        icon.addPixmap(picture, QIcon::Selected);
    }
    return icon;
}

} // namespace

LayerMarks::LayerMarks(Document& document)
    : m_document(document)
{
    document.SetRowMarks([this](const Layer& layer, int role) { return Mark(layer, role); });
    connect(&document, &Document::LayerMarksChanged, this, [this](const Layer* layer) {
        Write();
        m_document.Layers().RepaintMarks(layer);
    });
    connect(&document, &Document::AboutToClear, this, [this] { m_namesInFile.clear(); });
    connect(&document, &Document::HistoryBegan, this, [this](bool isSaved) {
        // A file that is read only in part does not become the project's own, but the layers that
        // came from it are locked as they were.
        const ProjectSettings& settings = ProjectSettings::Instance();
        if (isSaved && !settings.FileName().isEmpty()) {
            Read(QFileInfo(settings.ProjectFilePath()).absoluteFilePath());
        }
    });
    connect(&document, &Document::FilesNoted, this, &LayerMarks::FollowFiles);
    connect(&document, &Document::HistoryChanged, this, [this] {
        // What is only looked at shows what its file says; nobody could end this there.
        if (!m_document.IsEditable()) {
            m_document.SetSoloLayer(nullptr);
        }
    });
}

LayerMarks::~LayerMarks()
{
    m_document.SetRowMarks({});
}

QVariant LayerMarks::Mark(const Layer& layer, int role) const
{
    if (role == Qt::ToolTipRole) {
        const QString tip = ToolTip(layer);
        return tip.isEmpty() ? QVariant() : QVariant(tip);
    }
    const Formulas& formulas = m_document.LayerFormulas();
    const FormulaState state = formulas.StateOf(layer);
    const bool hasBadge =
        state != FormulaState::None && (state != FormulaState::UpToDate || formulas.IsLive(layer));
    if (!m_document.IsLocked(layer) && !hasBadge) {
        return {};
    }
    return MarkedIcon(layer.Color(), [&](QPainter& painter) {
        if (m_document.IsLocked(layer)) {
            DrawPadlock(painter);
        }
        if (hasBadge) {
            DrawBadge(painter, state);
        }
    });
}

QString LayerMarks::ToolTip(const Layer& layer) const
{
    QStringList lines;
    const QString formula = m_document.LayerFormulas().Describe(layer);
    if (m_document.IsLocked(layer)) {
        lines.append(tr("Locked: its pixels stay as they are"));
    }
    if (m_document.SoloLayer() == &layer) {
        lines.append(tr("Only this layer is shown"));
    } else if (m_document.SoloLayer() && layer.IsVisible()) {
        lines.append(tr("Not shown while only one layer is shown"));
    }
    // The state of a computed layer comes last.
    if (!formula.isEmpty()) {
        lines.append(formula);
    }
    return lines.join(QLatin1Char('\n'));
}

void LayerMarks::FollowFiles()
{
    if (m_document.Path().isEmpty()) {
        return;
    }
    m_namesInFile.clear();
    const QVector<Layer*> layers = m_document.Layers().Layers();
    for (const Layer* layer : layers) {
        m_namesInFile.insert(layer->Id(), layer->text());
    }
    Write();
}

void LayerMarks::Read(const QString& path)
{
    m_notes = {path, ProjectNotes::Read(LockedGroup, path), ProjectNotes::Read(SoloGroup, path)};
    const QVector<Layer*> layers = m_document.Layers().Layers();
    for (Layer* layer : layers) {
        if (m_notes.locked.contains(layer->text())) {
            m_document.SetLocked(*layer, true);
        }
        if (m_notes.solo.contains(layer->text())) {
            // The current layer is on the map in any case.
            Layer* current = m_document.CurrentLayer();
            m_document.SetSoloLayer(current ? current : layer);
        }
    }
}

void LayerMarks::Write()
{
    Notes notes{m_document.Path(), {}, {}};
    if (notes.path.isEmpty() || !m_document.IsEditable()) {
        return;
    }
    const QSet<int>& locked = m_document.LockedIds();
    for (const int id : locked) {
        notes.locked.append(m_namesInFile.value(id));
    }
    // A layer that was never saved may have the name of another one in the file.
    notes.locked.removeAll(QString());
    notes.locked.sort();
    const Layer* solo = m_document.SoloLayer();
    if (solo && m_namesInFile.contains(solo->Id())) {
        notes.solo.append(m_namesInFile.value(solo->Id()));
    }
    if (!(notes == m_notes)) {
        m_notes = notes;
        ProjectNotes::Write(LockedGroup, notes.path, notes.locked);
        ProjectNotes::Write(SoloGroup, notes.path, notes.solo);
    }
}

#include "document/edits/PaintMask.h"

#include "document/Document.h"
#include "layers/raster/Mask.h"
#include "layers/raster/MaskTile.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace {

bool Differs(const QImage& mask, const raster::Region& region, uchar value)
{
    return std::any_of(region.begin(), region.end(), [&mask, value](const raster::Span& span) {
        const uchar* row = mask.constScanLine(span.y);
        return std::any_of(row + span.begin, row + span.end,
                           [value](uchar pixel) { return pixel != value; });
    });
}

/// The pixels of the tiles that the span meets.
QRect TilesOf(const raster::Span& span)
{
    constexpr int side = raster::TileSide;
    const int left = span.begin / side * side;
    const int right = (span.end + side - 1) / side * side;
    return {left, span.y / side * side, right - left, side};
}

/// Keeps the tiles that the region meets. Spans that follow each other mostly meet the same tiles.
bool Touch(raster::MaskDelta& delta, const QImage& mask, const raster::Region& region)
{
    QRect touched;
    return std::all_of(region.begin(), region.end(), [&](const raster::Span& span) {
        if (touched.contains(QRect(span.begin, span.y, span.end - span.begin, 1))) {
            return true;
        }
        touched = TilesOf(span);
        return delta.Touch(mask, touched);
    });
}

} // namespace

PaintMask::PaintMask(const QString& text, Layer& layer, raster::MaskDelta delta,
                     const QRect& changed)
    : Edit(text)
    , m_layer(&layer)
    , m_delta(std::move(delta))
    , m_changed(changed)
{
}

PaintMask::PaintMask(const QString& text, Layer& layer, const QImage& mask)
    : PaintMask(text, layer, raster::MaskDelta(), mask.rect())
{
    std::optional<raster::MaskDelta> delta = raster::MaskDelta::Between(layer.Image(), mask);
    m_isRecorded = delta.has_value();
    if (delta) {
        m_delta = std::move(*delta);
        m_mask = mask;
    }
}

PaintMask::PaintMask(const QString& text, Layer& layer, raster::Region region, uchar value)
    : PaintMask(text, layer, raster::MaskDelta(), raster::Bounds(region))
{
    if (!Differs(layer.Image(), region, value)) {
        return;
    }
    m_isRecorded = Touch(m_delta, layer.Image(), region);
    if (m_isRecorded) {
        m_region = std::move(region);
        m_value = value;
    } else {
        m_delta = raster::MaskDelta();
    }
}

PaintMask::~PaintMask()
{
    if (m_memory) {
        m_memory->Remove(m_number);
    }
}

void PaintMask::Do(Document& document)
{
    if (m_memory) {
        Show(document, true);
    } else {
        Begin(document);
    }
}

void PaintMask::Begin(Document& document)
{
    if (!m_region.empty()) {
        FillRegion(document);
    }
    m_memory = &document.Memory();
    m_number = m_memory->Add(*this, m_delta);
    if (!m_mask.isNull()) {
        emit document.PixelsAboutToChange(m_layer);
        m_layer->TakePaintedMask(m_mask);
        m_mask = QImage();
    }
    document.AnnouncePixels(m_layer, m_changed.toRect(), m_delta);
}

void PaintMask::FillRegion(Document& document)
{
    emit document.PixelsAboutToChange(m_layer);
    // Only the mask that nobody shares is filled in place.
    QImage mask = m_layer->Image();
    m_layer->TakePaintedMask({});
    if (raster::Unshare(mask)) {
        raster::Fill(mask, m_region, m_value);
        m_delta.DropUnchanged(mask);
    } else {
        m_delta = raster::MaskDelta();
        document.ReportLater(
            Document::tr("There is no memory to paint on layer '%1'.").arg(m_layer->text()));
    }
    m_layer->TakePaintedMask(mask);
    m_region = {};
}

void PaintMask::Show(Document& document, bool isNew)
{
    if (isNew == m_showsNew) {
        return;
    }
    emit document.PixelsAboutToChange(m_layer);
    const std::optional<QRect> changed = m_layer->SwapPixels(m_delta);
    m_memory->Update(m_number);
    if (changed) {
        m_showsNew = isNew;
        m_changed = *changed;
    } else {
        Fail();
    }
    document.AnnouncePixels(m_layer, changed.value_or(QRect()), m_delta);
}

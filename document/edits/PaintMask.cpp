#include "document/edits/PaintMask.h"

#include "document/Document.h"

#include <optional>
#include <utility>

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
    m_memory = &document.Memory();
    m_number = m_memory->Add(*this, m_delta);
    if (!m_mask.isNull()) {
        emit document.PixelsAboutToChange(m_layer);
        m_layer->TakePaintedMask(m_mask);
        m_mask = QImage();
    }
    document.AnnouncePixels(m_layer, m_changed.toRect(), m_delta);
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

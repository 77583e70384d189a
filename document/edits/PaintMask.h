#pragma once

#include "document/Edit.h"
#include "layers/raster/MaskDelta.h"
#include "layers/raster/Region.h"

#include <QImage>

class HistoryMemory;

/// What a stroke, a shape, a fill or a computation changed in the mask of one layer. It holds only
/// the side that the mask does not show.
class PaintMask : public Edit
{
public:
    /// The mask has been changed already, within the rectangle of layer pixels; delta holds what it
    /// was before.
    PaintMask(const QString& text, Layer& layer, raster::MaskDelta delta, const QRect& changed);
    /// The layer shall have the mask. When there is no memory to undo that, the edit changes
    /// nothing.
    PaintMask(const QString& text, Layer& layer, const QImage& mask);
    /// The pixels of the region shall have the value. Where there is no memory to undo that, the
    /// edit changes nothing.
    PaintMask(const QString& text, Layer& layer, raster::Region region, uchar value);
    ~PaintMask() override;

    /// False when there is no memory to undo it.
    bool IsRecorded() const { return m_isRecorded; }
    bool Changes() const override { return !m_delta.IsEmpty(); }
    EditPlace Place() const override { return {m_layer, m_changed}; }

protected:
    void Do(Document& document) override;
    void Undo(Document& document) override { Show(document, false); }

private:
    void Begin(Document& document);
    void FillRegion(Document& document);
    void Show(Document& document, bool isNew);

    Layer* m_layer;
    raster::MaskDelta m_delta;
    bool m_isRecorded = true;
    /// The mask to begin with, until it is in the layer.
    QImage m_mask;
    /// The pixels to begin with, until they have the value.
    raster::Region m_region;
    uchar m_value = 0;
    QRectF m_changed;
    /// Whether the layer has the mask that the edit made.
    bool m_showsNew = true;
    HistoryMemory* m_memory = nullptr;
    int m_number = 0;
};

#pragma once

#include "app/Tracked.h"

#include <QColor>
#include <QImage>
#include <QPixmap>
#include <QStandardItem>
#include <QString>

#include <optional>

class LayerList;
class QXmlStreamReader;
class QXmlStreamWriter;

namespace raster {
class MaskDelta;
}

/// What the project's document holds of a layer, as plain values.
struct LayerRecord
{
    /// Takes the attributes of the "layer" element that the reader stands on.
    static LayerRecord Read(const QXmlStreamReader& xml);
    /// Writes the "layer" element up to its end tag.
    void WriteStart(QXmlStreamWriter& xml) const;

    quint32 usageFlags = 0;
    quint32 valueFlags = 0;
    QRgb color = 0;
    bool isVisible = false;
    QString name;
};

/// One raster area of the world: a mask of the project's layer size, the flags that its pixels
/// carry, and how it is shown. The item's text is its name. A layer is owned by whoever made it
/// until a LayerList takes it, and from then on by the list's model.
class Layer : public QStandardItem
{
public:
    /// The name is "layer-ID" while a GUI runs, and empty in a batch run.
    Layer(quint32 usageFlags, quint32 valueFlags, LayerList* list);
    Layer(quint32 usageFlags, quint32 valueFlags, LayerList* list, const QString& name);
    Layer(quint32 usageFlags, quint32 valueFlags, LayerList* list, const QString& name,
          const QString& code);

    const Lifetime& GetLifetime() const { return m_lifetime; }
    /// Unique in the process and never reused.
    int Id() const { return m_id; }
    LayerList* List() const { return m_list; }
    /// The definition of a computed layer; empty for a painted one. Not saved.
    const QString& Code() const { return m_code; }
    /// The mask: Format_Indexed8 with the grey table.
    const QImage& Image() const { return m_image; }
    /// The alpha is the layer's opacity.
    const QColor& Color() const { return m_color; }
    bool IsVisible() const { return m_isVisible; }
    quint32 UsageFlags() const { return m_usageFlags; }
    quint32 ValueFlags() const { return m_valueFlags; }

    /// The layer's colour (opaque) where the mask is 255, transparent elsewhere. Made on request,
    /// because it takes four bytes a pixel. Null in a batch run.
    QPixmap Pixmap() const;

    /// Takes a mask unchanged. From a 32-bit image it makes a mask of the pixels that equal color's
    /// opaque RGB. While a GUI runs, the layer also takes color with its alpha.
    void SetImage(const QImage& image, const QColor& color);
    /// Sets the RGB and keeps the alpha.
    void SetColor(const QColor& color);
    /// 0 to 255.
    void SetOpacity(int alpha);
    void SetVisible(bool isVisible);
    void SetUsageFlags(quint32 flags) { m_usageFlags = flags; }
    void SetValueFlags(quint32 flags) { m_valueFlags = flags; }
    /// Evaluates the code at the layer size and replaces the image. An equal code changes nothing.
    /// Returns false if the result is null; code and image then stay. A null result may be logged,
    /// which processes events, so the layer may have been destroyed then.
    bool SetCode(const QString& code);
    /// The code that the mask, which stays as it is, was computed by.
    void StoreCode(const QString& code) { m_code = code; }
    /// Takes over the pixels that the brush painted in the layer's colour. Does nothing for a layer
    /// that is in no list, or when the image is no 32-bit image.
    void ApplyPaintedImage(const QImage& argb);
    /// Takes over a mask without copying it. Null makes the layer release its mask, so that a brush
    /// that shares the mask can paint in place before it hands it over again.
    void TakePaintedMask(const QImage& mask);
    /// Exchanges the delta's tiles and those of the mask, in place where nobody else shares its
    /// pixels. As raster::MaskDelta::Swap.
    std::optional<QRect> SwapPixels(raster::MaskDelta& delta);
    /// Replaces the pixels within the rectangle, which lies within the mask, by as many of the
    /// other mask from the point on, in place where nobody else shares the pixels. False without
    /// memory.
    bool PutPixels(const QRect& rect, const QImage& from, QPoint point);
    /// Does nothing: the picture is made on request.
    void UpdatePixmap() {}

    /// Its list may mark the row: see LayerList::SetRowMarks.
    QVariant data(int role = Qt::UserRole + 1) const override;
    /// A rename to an invalid name is ignored without a message.
    void setData(const QVariant& value, int role = Qt::UserRole + 1) override;

    LayerRecord Record() const;
    /// Writes the "layer" element and, before its end tag, the bitmap. Returns false if the bitmap
    /// failed.
    bool WriteXml(QXmlStreamWriter& xml) const;
    /// Writes the mask into the project's "layers" folder and logs success or failure.
    bool SaveBitmap() const;

private:
    void Init();
    void ShowColor();

    Lifetime m_lifetime;
    int m_id;
    LayerList* m_list;
    quint32 m_usageFlags;
    quint32 m_valueFlags;
    QString m_code;
    QImage m_image;
    QColor m_color{QRgb(0xFFFFFFFF)};
    bool m_isVisible = false;
};

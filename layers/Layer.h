#pragma once

#include "app/Tracked.h"

#include <QColor>
#include <QImage>
#include <QPixmap>
#include <QStandardItem>
#include <QString>

class LayerList;
class QXmlStreamWriter;

/// One raster area of the world: a mask of the project's layer size, the flags that its pixels
/// carry, and how it is shown. The item's text is its name. A layer is owned by whoever made it
/// until a LayerList takes it, and from then on by the list's model.
class Layer : public QStandardItem
{
public:
    /// Named "layer-ID" while a GUI runs; without a name in a batch run.
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

    /// The layer's colour (opaque) where the mask is 255, transparent elsewhere; made when asked
    /// for, because it takes four bytes a pixel. Null in a batch run.
    QPixmap Pixmap() const;
    /// Changes whenever the picture may have.
    quint64 PictureRevision() const { return m_pictureRevision; }

    /// Takes a mask as it is, and of a 32-bit image the pixels that equal color's opaque RGB. While
    /// a GUI runs the layer takes color with its alpha too.
    void SetImage(const QImage& image, const QColor& color);
    /// Keeps the alpha.
    void SetColor(const QColor& color);
    /// 0 to 255.
    void SetOpacity(int alpha);
    void SetVisible(bool isVisible);
    void SetUsageFlags(quint32 flags) { m_usageFlags = flags; }
    void SetValueFlags(quint32 flags) { m_valueFlags = flags; }
    /// Replaces the image by what the code evaluates to over the list at the layer size; an equal
    /// code changes nothing. False when that is null: the code and the image stay as they are, and
    /// because null may come with a message, which processes events, the layer may be gone.
    bool SetCode(const QString& code);
    /// Takes over a code and the mask that it evaluated to.
    void SetComputedImage(const QString& code, const QImage& mask);
    /// Takes over the pixels that the brush painted in the layer's colour. Does nothing for a layer
    /// that is in no list, or when the image is no 32-bit image.
    void ApplyPaintedImage(const QImage& argb);
    /// The same for a mask, without a copy; null gives the layer's hold on the present one up, so
    /// that a brush that holds it too can paint in place before it hands it over again.
    void TakePaintedMask(const QImage& mask);
    /// The picture is out of date.
    void UpdatePixmap();

    /// A rename that is no valid name is silently dropped.
    void setData(const QVariant& value, int role = Qt::UserRole + 1) override;

    /// Writes the "layer" element and, before it is closed, the bitmap; false when that failed.
    bool WriteXml(QXmlStreamWriter& xml) const;
    /// Writes the mask into the project's "layers" folder; logs what came of it.
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
    quint64 m_pictureRevision = 0;
};

#include "layers/Layer.h"

#include "app/Gui.h"
#include "app/Ids.h"
#include "app/Log.h"
#include "app/Names.h"
#include "app/ProjectSettings.h"
#include "app/Xml.h"
#include "layers/CustomLayer.h"
#include "layers/LayerList.h"
#include "layers/Targa.h"
#include "layers/raster/Mask.h"
#include "layers/raster/MaskDelta.h"

#include <QXmlStreamWriter>

#include <cstring>

Layer::Layer(quint32 usageFlags, quint32 valueFlags, LayerList* list)
    : Layer(usageFlags, valueFlags, list, QString())
{
    if (IsGuiRunning()) {
        setText(QStringLiteral("layer-%1").arg(m_id));
    }
}

Layer::Layer(quint32 usageFlags, quint32 valueFlags, LayerList* list, const QString& name)
    : Layer(usageFlags, valueFlags, list, name, QString())
{
}

Layer::Layer(quint32 usageFlags, quint32 valueFlags, LayerList* list, const QString& name,
             const QString& code)
    : QStandardItem(name)
    , m_id(NextId<Layer>())
    , m_list(list)
    , m_usageFlags(usageFlags)
    , m_valueFlags(valueFlags)
    , m_code(code)
{
    Init();
}

void Layer::Init()
{
    if (!IsGuiRunning()) {
        return;
    }
    setCheckable(true);
    setEditable(true);
    setDragEnabled(true);
    setDropEnabled(false);
    ShowColor();
    QStandardItem::setData(m_id, Qt::UserRole);
}

void Layer::ShowColor()
{
    QStandardItem::setData(m_color, Qt::DecorationRole);
}

QPixmap Layer::Pixmap() const
{
    if (!IsGuiRunning()) {
        return {};
    }
    return QPixmap::fromImage(raster::MaskToDisplay(m_image, m_color.rgb()));
}

void Layer::SetImage(const QImage& image, const QColor& color)
{
    m_image = raster::ImageToMask(image, color.rgb());
    if (IsGuiRunning()) {
        m_color = color;
        ShowColor();
    }
}

void Layer::SetColor(const QColor& color)
{
    const int alpha = m_color.alpha();
    m_color = color;
    m_color.setAlpha(alpha);
    ShowColor();
}

void Layer::SetOpacity(int alpha)
{
    m_color.setAlpha(alpha);
    ShowColor();
}

void Layer::SetVisible(bool isVisible)
{
    m_isVisible = isVisible;
    setCheckState(isVisible ? Qt::Checked : Qt::Unchecked);
}

bool Layer::SetCode(const QString& code)
{
    if (code == m_code) {
        return true;
    }
    if (!m_list) {
        return false;
    }
    const QImage mask = EvaluateAtLayerSize(*m_list, code);
    if (mask.isNull()) {
        return false;
    }
    m_code = code;
    m_image = mask;
    return true;
}

void Layer::ApplyPaintedImage(const QImage& argb)
{
    if (!m_list) {
        return;
    }
    const QImage mask = raster::ImageToMask(argb, m_color.rgb());
    if (mask.isNull()) {
        return;
    }
    m_image = mask;
}

void Layer::TakePaintedMask(const QImage& mask)
{
    if (m_list) {
        m_image = mask;
    }
}

std::optional<QRect> Layer::SwapPixels(raster::MaskDelta& delta)
{
    return delta.Swap(m_image);
}

bool Layer::PutPixels(const QRect& rect, const QImage& from, QPoint point)
{
    if (!raster::Unshare(m_image)) {
        return false;
    }
    uchar* pixels = m_image.bits();
    const auto stride = static_cast<qint64>(m_image.bytesPerLine());
    for (int y = 0; y < rect.height(); ++y) {
        std::memcpy(pixels + (rect.y() + y) * stride + rect.x(),
                    from.constScanLine(point.y() + y) + point.x(),
                    static_cast<std::size_t>(rect.width()));
    }
    return true;
}

QVariant Layer::data(int role) const
{
    // Without a model the layer may outlive the list.
    if (model() && m_list && (role == Qt::DecorationRole || role == Qt::ToolTipRole)) {
        QVariant mark = m_list->RowMark(*this, role);
        if (mark.isValid()) {
            return mark;
        }
    }
    return QStandardItem::data(role);
}

void Layer::setData(const QVariant& value, int role)
{
    if (role != Qt::EditRole) {
        QStandardItem::setData(value, role);
        return;
    }
    const QString name = value.toString();
    if (IsRename(text(), name)) {
        setText(name);
    }
}

LayerRecord LayerRecord::Read(const QXmlStreamReader& xml)
{
    constexpr quint32 white = 0xFFFFFFFF;
    return {BitsAttribute(xml, QLatin1String("usage_flags")),
            BitsAttribute(xml, QLatin1String("value_flags")),
            UIntAttribute(xml, QLatin1String("color"), white),
            IntAttribute(xml, QLatin1String("visible"), 0) > 0,
            TextAttribute(xml, QLatin1String("name"))};
}

void LayerRecord::WriteStart(QXmlStreamWriter& xml) const
{
    xml.writeStartElement(QStringLiteral("layer"));
    xml.writeAttribute(QStringLiteral("usage_flags"), QString::number(usageFlags));
    xml.writeAttribute(QStringLiteral("value_flags"), QString::number(valueFlags));
    xml.writeAttribute(QStringLiteral("color"), QString::number(color));
    xml.writeAttribute(QStringLiteral("visible"), QString::number(isVisible ? 1 : 0));
    WriteTextAttribute(xml, QLatin1String("name"), name);
}

LayerRecord Layer::Record() const
{
    return {m_usageFlags, m_valueFlags, m_color.rgba(), m_isVisible, text()};
}

bool Layer::WriteXml(QXmlStreamWriter& xml) const
{
    Record().WriteStart(xml);
    const bool isSaved = SaveBitmap();
    xml.writeEndElement();
    return isSaved;
}

bool Layer::SaveBitmap() const
{
    const QString name = text();
    if (!SaveTarga(ProjectSettings::Instance().LayerPath(name), m_image, true)) {
        return false;
    }
    LogSuccess(QStringLiteral("Layer '%1' successfully saved.").arg(name));
    return true;
}

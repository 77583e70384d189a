#include "tool/MapPicture.h"

#include "layers/raster/Mask.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "territories/ZoneIcons.h"
#include "tool/Progress.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include <algorithm>

namespace {

/// The layer pixel under the centre of a picture pixel.
int LayerPixel(int index, int layerLength, int length)
{
    return static_cast<int>((2 * qint64(index) + 1) * layerLength / (2 * qint64(length)));
}

/// Draws a colour over a pixel; both are premultiplied.
QRgb Over(QRgb color, QRgb below)
{
    const int rest = 255 - qAlpha(color);
    const auto blend = [rest](int above, int under) { return above + (under * rest + 127) / 255; };
    return qRgba(blend(qRed(color), qRed(below)), blend(qGreen(color), qGreen(below)),
                 blend(qBlue(color), qBlue(below)), blend(qAlpha(color), qAlpha(below)));
}

/// The zones of visible territories, the lowest first.
QVector<Zone*> VisibleZones(const TerritoryTypeList& types)
{
    QVector<Zone*> zones;
    const QVector<TerritoryType*> all = types.Types();
    for (const TerritoryType* type : all) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            if (territory->IsVisible()) {
                zones += territory->Zones().values().toVector();
            }
        }
    }
    std::stable_sort(zones.begin(), zones.end(),
                     [](const Zone* a, const Zone* b) { return a->zValue() < b->zValue(); });
    return zones;
}

} // namespace

MapPicture::MapPicture(QSize layerSize, QSize size)
    : m_layerSize(layerSize)
    , m_image(size, QImage::Format_ARGB32_Premultiplied)
{
    m_image.fill(QColor(48, 48, 48));
    for (int x = 0; x < m_image.width(); ++x) {
        m_columns.push_back(LayerPixel(x, layerSize.width(), size.width()));
    }
}

std::vector<MapPicture::ShownRow> MapPicture::RowsOf(int band) const
{
    const int height = m_layerSize.height();
    const int bottom = height - band * raster::TargaBands::BandRows;
    const int top = std::max(bottom - raster::TargaBands::BandRows, 0);
    std::vector<ShownRow> rows;
    const auto first = static_cast<int>(qint64(top) * m_image.height() / height);
    for (int y = std::max(first - 1, 0); y < m_image.height(); ++y) {
        const int row = LayerPixel(y, height, m_image.height());
        if (row >= bottom) {
            break;
        }
        if (row >= top) {
            rows.push_back({y, row - top});
        }
    }
    return rows;
}

void MapPicture::DrawPicture(const QImage& picture)
{
    QPainter painter(&m_image);
    painter.drawImage(
        0, 0, picture.scaled(m_image.size(), Qt::IgnoreAspectRatio, Qt::FastTransformation));
}

void MapPicture::Cover(const QColor& color)
{
    QPainter painter(&m_image);
    painter.fillRect(m_image.rect(), color);
}

bool MapPicture::DrawMask(const LayerBitmap& bitmap, const QColor& color)
{
    if (bitmap.GetProblem() != LayerBitmap::Problem::None) {
        bitmap.PrintProblem();
        return false;
    }
    bitmap.WarnIfCutOff();
    const QRgb premultiplied = qPremultiply(color.rgba());
    Progress progress(QStringLiteral("Drawing"), bitmap.BandCount());
    for (int band = 0; band < bitmap.BandCount(); ++band) {
        progress.Step();
        const std::vector<ShownRow> rows = RowsOf(band);
        if (rows.empty() || bitmap.IsClear(band)) {
            continue;
        }
        const QImage mask = bitmap.Band(band);
        if (mask.isNull()) {
            return false;
        }
        for (const ShownRow row : rows) {
            const uchar* pixels = mask.constScanLine(row.bandRow);
            auto* to = reinterpret_cast<QRgb*>(m_image.scanLine(row.y));
            for (std::size_t x = 0; x < m_columns.size(); ++x) {
                if (pixels[m_columns[x]] == raster::MaskSet) {
                    to[x] = Over(premultiplied, to[x]);
                }
            }
        }
    }
    return true;
}

bool MapPicture::DrawFlags(FieldBands& fields, QVector<ShownFlag>& flags)
{
    Progress progress(QStringLiteral("Drawing flags"), fields.BandCount());
    for (int band = 0; band < fields.BandCount(); ++band) {
        const std::optional<FieldBand> read = fields.Read(band);
        if (!read) {
            return false;
        }
        const std::vector<ShownRow> rows = RowsOf(band);
        for (const ShownRow row : rows) {
            const int fieldRow = fields.Rows(band) - 1 - row.bandRow;
            auto* to = reinterpret_cast<QRgb*>(m_image.scanLine(row.y));
            for (std::size_t x = 0; x < m_columns.size(); ++x) {
                const quint32 usage = read->usages.Get(m_columns[x], fieldRow);
                const quint32 value = read->values.Get(m_columns[x], fieldRow);
                for (ShownFlag& flag : flags) {
                    if (((flag.isUsage ? usage : value) >> flag.bit & 1U) != 0) {
                        flag.isSeen = true;
                        to[x] = Over(qPremultiply(flag.color.rgba()), to[x]);
                    }
                }
            }
        }
        progress.Step();
    }
    return true;
}

void MapPicture::DrawZones(const TerritoryTypeList& types)
{
    ZoneIcons::Load();
    QPainter painter(&m_image);
    painter.scale(double(m_image.width()) / m_layerSize.width(),
                  double(m_image.height()) / m_layerSize.height());
    const QStyleOptionGraphicsItem option;
    const QVector<Zone*> zones = VisibleZones(types);
    for (Zone* zone : zones) {
        painter.save();
        painter.translate(zone->pos());
        zone->paint(&painter, &option);
        painter.restore();
    }
}

void MapPicture::DrawLegend(const QVector<ShownFlag>& flags)
{
    if (flags.isEmpty()) {
        return;
    }
    QPainter painter(&m_image);
    QFont font = painter.font();
    font.setPixelSize(qBound(10, m_image.height() / 40, 28));
    painter.setFont(font);
    const QFontMetrics metrics(font);
    const int line = metrics.height() + 4;
    int width = 0;
    for (const ShownFlag& flag : flags) {
        width = std::max(width, metrics.horizontalAdvance(flag.name));
    }
    const QRect legend(0, 0, width + 2 * line, line * flags.size() + 8);
    if (!m_image.rect().contains(legend) ||
        4 * qint64(legend.width()) * legend.height() > qint64(m_image.width()) * m_image.height()) {
        return;
    }
    painter.fillRect(legend, QColor(255, 255, 255, 220));
    painter.setPen(Qt::black);
    for (int i = 0; i < flags.size(); ++i) {
        const int top = 4 + i * line;
        const QColor& color = flags.at(i).color;
        painter.fillRect(QRect(6, top + 2, line - 6, line - 6), QColor(color.rgb()));
        painter.drawText(line + 6, top + 2 + metrics.ascent(), flags.at(i).name);
    }
}

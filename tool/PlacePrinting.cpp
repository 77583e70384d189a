#include "tool/Console.h"
#include "tool/PlaceAnswers.h"
#include "tool/Report.h"

#include <QJsonArray>
#include <QJsonValue>

#include <array>

namespace {

struct Owner
{
    QString type;
    QString territory;
};

std::vector<Owner> OwnersOf(const ProjectData& project)
{
    std::vector<Owner> owners;
    for (const TerritoryTypeData& type : project.types) {
        for (const TerritoryData& territory : type.territories) {
            owners.push_back({type.name, territory.name});
        }
    }
    return owners;
}

QString Number(double value, int digits = 15)
{
    return QString::number(value, 'g', digits);
}

/// Prints one answer after the other.
class AnswerPrinter
{
public:
    explicit AnswerPrinter(const PlaceAnswers& answers)
        : m_project(answers.project)
        , m_probe(answers.probe)
        , m_zones(answers.zones)
        , m_owners(OwnersOf(answers.project))
    {
    }

    Report ToReport(const PlaceAnswer& answer) const
    {
        const std::optional<QPoint>& pixel = answer.place.pixel;
        Report report;
        report.Add(QStringLiteral("x"), answer.place.x);
        report.Add(QStringLiteral("z"), answer.place.z);
        report.Add(QStringLiteral("pixel-x"), pixel ? QJsonValue(pixel->x()) : QJsonValue());
        report.Add(QStringLiteral("pixel-y"), pixel ? QJsonValue(pixel->y()) : QJsonValue());
        report.Add(QStringLiteral("usage"),
                   FieldReport(answer.layers.usage, m_project.flagTypes.usages));
        report.Add(QStringLiteral("value"),
                   FieldReport(answer.layers.value, m_project.flagTypes.values));
        report.Add(QStringLiteral("layers"), LayerReports(answer));
        report.Add(QStringLiteral("zones"), ZoneReports(answer));
        return report;
    }

    void PrintText(const PlaceAnswer& answer) const
    {
        const MapPlace& place = answer.place;
        const QString where =
            place.pixel ? QStringLiteral("pixel %1, %2").arg(place.pixel->x()).arg(place.pixel->y())
                        : QStringLiteral("outside of the world");
        Console::Print(
            QStringLiteral("X %1, Z %2: %3").arg(Number(place.x), Number(place.z), where));
        if (place.pixel) {
            PrintField("usage", answer.layers.usage, m_probe.UsageLayout(),
                       m_project.flagTypes.usages);
            PrintField("value", answer.layers.value, m_probe.ValueLayout(),
                       m_project.flagTypes.values);
        }
        for (const LayerHere& here : answer.layers.layers) {
            PrintLayer(here);
        }
        for (const ZoneHere& here : answer.zones) {
            const ProbedZone& zone = m_zones[static_cast<std::size_t>(here.index)];
            const Owner& owner = m_owners[static_cast<std::size_t>(zone.owner)];
            constexpr int distanceDigits = 6;
            Console::Print(QStringLiteral("  zone %1 of territory %2 of type %3: %4 m from its "
                                          "centre")
                               .arg(QString::number(zone.number), Console::Quoted(owner.territory),
                                    Console::Quoted(owner.type),
                                    Number(here.distance, distanceDigits)));
        }
    }

private:
    static Report FieldReport(const std::optional<quint32>& field, const QVector<QString>& names)
    {
        Report report;
        report.Add(QStringLiteral("word"), field ? QJsonValue(qint64(*field)) : QJsonValue());
        report.Add(QStringLiteral("flags"), FlagNames(field.value_or(0), names));
        return report;
    }

    static QString FlagText(quint32 flags, const QVector<QString>& names)
    {
        return flags == 0 ? QStringLiteral("none")
                          : AreaFlagTypes::BitNames(flags, names).join(QStringLiteral(" + "));
    }

    static void PrintField(const char* kind, const std::optional<quint32>& field,
                           const raster::FieldLayout& layout, const QVector<QString>& names)
    {
        QString text;
        if (field) {
            text = QStringLiteral("%1 (word %2)")
                       .arg(FlagText(*field, names), QString::number(*field));
        } else if (layout.HasFields()) {
            text = QStringLiteral("nothing, because the map has no fields right of the last whole "
                                  "word of a row");
        } else {
            text = QStringLiteral("nothing, because there are no types");
        }
        Console::Print(QStringLiteral("  %1: %2").arg(QString::fromLatin1(kind), text));
    }

    QVector<Report> LayerReports(const PlaceAnswer& answer) const
    {
        QVector<Report> reports;
        for (const LayerHere& here : answer.layers.layers) {
            const LayerData& layer = m_project.layers.at(here.row);
            Report report;
            report.Add(QStringLiteral("name"), layer.name);
            report.Add(QStringLiteral("grey"), here.grey);
            report.Add(QStringLiteral("visible"), layer.isVisible);
            report.Add(QStringLiteral("usages"),
                       FlagNames(layer.usageFlags, m_project.flagTypes.usages));
            report.Add(QStringLiteral("values"),
                       FlagNames(layer.valueFlags, m_project.flagTypes.values));
            reports.append(report);
        }
        return reports;
    }

    void PrintLayer(const LayerHere& here) const
    {
        const LayerData& layer = m_project.layers.at(here.row);
        Console::Print(QStringLiteral("  layer %1: grey %2, visible %3, usages %4, values %5")
                           .arg(Console::Quoted(layer.name), QString::number(here.grey),
                                layer.isVisible ? QStringLiteral("yes") : QStringLiteral("no"),
                                FlagText(layer.usageFlags, m_project.flagTypes.usages),
                                FlagText(layer.valueFlags, m_project.flagTypes.values)));
    }

    QVector<Report> ZoneReports(const PlaceAnswer& answer) const
    {
        QVector<Report> reports;
        for (const ZoneHere& here : answer.zones) {
            const ProbedZone& zone = m_zones[static_cast<std::size_t>(here.index)];
            const Owner& owner = m_owners[static_cast<std::size_t>(zone.owner)];
            Report report;
            report.Add(QStringLiteral("type"), owner.type);
            report.Add(QStringLiteral("territory"), owner.territory);
            report.Add(QStringLiteral("number"), zone.number);
            report.Add(QStringLiteral("distance"), here.distance);
            reports.append(report);
        }
        return reports;
    }

    const ProjectData& m_project;
    const MapProbe& m_probe;
    const ProbedZones& m_zones;
    std::vector<Owner> m_owners;
};

} // namespace

void PlaceAnswers::Print(bool asJson) const
{
    const AnswerPrinter printer(*this);
    if (!asJson) {
        for (const PlaceAnswer& answer : answers) {
            printer.PrintText(answer);
        }
        return;
    }
    QVector<Report> places;
    for (const PlaceAnswer& answer : answers) {
        places.append(printer.ToReport(answer));
    }
    Report report;
    report.Add(QStringLiteral("places"), places);
    report.Print(true);
}

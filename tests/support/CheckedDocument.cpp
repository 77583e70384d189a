#include "tests/support/CheckedDocument.h"

#include "app/ProjectDocument.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/TerritoryEdits.h"

#include <QTest>
#include <QXmlStreamWriter>

CheckedDocument::CheckedDocument()
{
    // Fields of four bits end at a multiple of eight columns.
    document.Do(Edits::ImportFlagTypes(
        document.Layers(),
        {{QStringLiteral("Town"), QStringLiteral("Farm"), QStringLiteral("Coast")},
         {QStringLiteral("Tier1"), QStringLiteral("Tier2"), QStringLiteral("Tier3")}},
        true));
    forest = AddLayer();
    lake = AddLayer();
    document.Do(Edits::Rename(*forest, QStringLiteral("Forest")));
    document.Do(Edits::Rename(*lake, QStringLiteral("Lake")));
    for (Layer* layer : {forest, lake}) {
        document.Do(Edits::SetLayerFlags(*layer, 1, 1));
        Fill(*layer, {10, 10, 30, 30}, 255);
    }
    document.Do(Edits::SetRowChecked(*territory, true));
    ZoneValues values;
    values.counts = {1, 2, 3, 4};
    values.radius = 60;
    document.Do(Edits::InsertZone(*territory, {100, 100}, values));
    zone = territory->Zones().first();
    document.BeginHistory(true);
    problems.SetRest(0);
}

bool CheckedDocument::Wait()
{
    constexpr int longest = 20000;
    return QTest::qWaitFor([this] { return problems.IsUpToDate(); }, longest);
}

QStringList CheckedDocument::Rules()
{
    if (!Wait()) {
        return {QStringLiteral("The check does not end.")};
    }
    QStringList rules;
    const std::vector<Problems::Part> parts = problems.Parts();
    for (const Problems::Part& part : parts) {
        for (const Problem& problem : *part) {
            rules.append(problem.finding.rule);
        }
    }
    rules.sort();
    return rules;
}

Problem CheckedDocument::Find(const QString& rule)
{
    Wait();
    const std::vector<Problems::Part> parts = problems.Parts();
    for (const Problems::Part& part : parts) {
        for (const Problem& problem : *part) {
            if (problem.finding.rule == rule) {
                return problem;
            }
        }
    }
    qFatal("There is no finding of the rule %s.", qPrintable(rule));
}

QByteArray CheckedDocument::Bytes() const
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    WriteProjectText(xml, {-1,
                           ProjectSettings::Instance(),
                           {},
                           document.Layers().Records(),
                           document.Types().Records()});
    const QVector<Layer*> layers = document.Layers().Layers();
    for (const Layer* layer : layers) {
        const QImage& mask = layer->Image();
        for (int y = 0; y < mask.height(); ++y) {
            bytes.append(reinterpret_cast<const char*>(mask.constScanLine(y)), mask.width());
        }
    }
    return bytes;
}

#include "layers/rules/LayerRules.h"

#include <QStringList>

namespace {

/// The numbers of the set bits that have no flag type, with commas between them.
QString UnnamedBits(quint32 flags, int typeCount)
{
    QStringList bits;
    for (int bit = typeCount; bit < AreaFlagTypes::MaxCount; ++bit) {
        if ((flags >> bit & 1U) != 0) {
            bits.append(QString::number(bit));
        }
    }
    return bits.join(QStringLiteral(", "));
}

void CheckBits(const FindingSpot& layer, FindingPart part, quint32 flags, int typeCount,
               Findings& findings)
{
    const QString kind =
        part == FindingPart::UsageFlags ? QStringLiteral("usage") : QStringLiteral("value");
    const QString bits = UnnamedBits(flags, typeCount);
    if (!bits.isEmpty()) {
        AddFinding(findings, layer, "unnamed-flag", Severity::Error,
                   QStringLiteral("no flag type names %1 bit %2.").arg(kind, bits),
                   "Add the missing flag types, or save the layer's flags anew.", part);
    }
}

const char* RuleOf(BitmapFault fault)
{
    switch (fault) {
    case BitmapFault::Missing:
        return "bitmap-missing";
    case BitmapFault::WrongSize:
        return "bitmap-size";
    default:
        return "bitmap-unreadable";
    }
}

} // namespace

FindingSpot LayerSpot(int index, const QString& name)
{
    return {{FindingSubject::Kind::Layer, index}, QStringLiteral("layer ") + QuotedName(name)};
}

void CheckLayerFlags(const FindingSpot& layer, quint32 usageFlags, quint32 valueFlags,
                     const AreaFlagTypes& types, Findings& findings)
{
    CheckBits(layer, FindingPart::UsageFlags, usageFlags, types.usages.size(), findings);
    CheckBits(layer, FindingPart::ValueFlags, valueFlags, types.values.size(), findings);
    if ((usageFlags | valueFlags) == 0) {
        AddFinding(findings, layer, "layer-without-flags", Severity::Warning,
                   QStringLiteral("it has no flags and leaves no trace in the map."),
                   "Check its flags in the layer properties.");
    }
}

void CheckLayerPixels(const FindingSpot& layer, qint64 coveredCount, qint64 greyCount,
                      Findings& findings)
{
    if (coveredCount == 0) {
        AddFinding(findings, layer, "layer-without-pixels", Severity::Warning,
                   QStringLiteral("nothing is painted in it."), "Paint it or remove it.");
    }
    if (greyCount > 0) {
        AddFinding(findings, layer, "mask-value", Severity::Warning,
                   QStringLiteral("%1 pixels are neither 0 nor 255: the map has them, and the "
                                  "editor does not show them.")
                       .arg(greyCount),
                   "Make them 0 or 255.");
    }
}

void CheckBitmap(const FindingSpot& layer, BitmapFault fault, const QString& error,
                 Findings& findings)
{
    if (fault != BitmapFault::None) {
        AddFinding(findings, layer, RuleOf(fault), Severity::Error,
                   QStringLiteral("its bitmap ") + error,
                   "The editor leaves the layer out; put a bitmap of the layer size in its place.");
    }
}

void AddCutOffBitmap(const FindingSpot& layer, Findings& findings)
{
    AddFinding(findings, layer, "bitmap-cut-off", Severity::Error,
               QStringLiteral("its bitmap ends before its last pixel."),
               "Restore the bitmap from a backup.");
}

void AddFailedBitmap(const FindingSpot& layer, Findings& findings)
{
    AddFinding(findings, layer, RuleOf(BitmapFault::Unreadable), Severity::Error,
               QStringLiteral("its bitmap cannot be read."),
               "Try again, or restore the bitmap from a backup.");
}

void AddOrphanBitmap(const QString& file, Findings& findings)
{
    AddFinding(findings,
               {{FindingSubject::Kind::Bitmap}, QStringLiteral("bitmap ") + QuotedName(file)},
               "orphan-bitmap", Severity::Warning, QStringLiteral("no layer has it."),
               "Remove it from the folder 'layers'.");
}

void CheckFormula(const FindingSpot& layer, FormulaState state, Findings& findings)
{
    if (state == FormulaState::OutOfDate) {
        AddFinding(findings, layer, "derived-out-of-date", Severity::Warning,
                   QStringLiteral("what it is computed from has changed since."),
                   "Recompute it in the editor, or run 'quillmap-tool derive'.");
    } else if (state == FormulaState::Broken) {
        AddFinding(findings, layer, "derived-broken", Severity::Warning,
                   QStringLiteral("a layer that it is computed from is missing."),
                   "Bring that layer back, or compute this one from others.");
    }
}

void AddUnreadableFormulas(const QString& file, const QString& fault, Findings& findings)
{
    AddFinding(findings, {{}, QStringLiteral("formulas ") + QuotedName(file)}, "derived-unreadable",
               Severity::Warning, QStringLiteral("they cannot be used: %1.").arg(fault),
               "Remove the file, or restore it from a backup.");
}

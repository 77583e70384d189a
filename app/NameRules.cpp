#include "app/NameRules.h"

#include "app/ControlCharacters.h"
#include "app/Names.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace {

using Kind = FindingSubject::Kind;

QString KindText(Kind kind)
{
    switch (kind) {
    case Kind::Layer:
        return QStringLiteral("layer");
    case Kind::Type:
        return QStringLiteral("territory type");
    case Kind::Territory:
        return QStringLiteral("territory");
    case Kind::UsageType:
        return QStringLiteral("usage flag");
    case Kind::ValueType:
        return QStringLiteral("value flag");
    default:
        return QStringLiteral("project");
    }
}

/// What happens when two names of this kind are equal.
QString Consequence(Kind kind)
{
    switch (kind) {
    case Kind::Layer:
        return QStringLiteral("both read one bitmap");
    case Kind::Type:
        return QStringLiteral("both are exported into one file");
    default:
        return QStringLiteral("nobody can tell them apart");
    }
}

/// Names of one kind that must differ from one another.
struct NameGroup
{
    Kind kind;
    QStringList names;
    /// The text after a name in a finding's place.
    QString within;
    /// Of territories.
    int type = -1;

    FindingSpot Spot(int index) const
    {
        const QString place =
            KindText(kind) + QLatin1Char(' ') + QuotedName(names.at(index)) + within;
        if (kind == Kind::Territory) {
            return {{kind, type, index}, place};
        }
        return {{kind, index}, place};
    }
};

void CheckEqual(const NameGroup& group, Findings& findings)
{
    const bool areFiles = group.kind == Kind::Layer || group.kind == Kind::Type;
    QSet<QString> exact;
    QSet<QString> folded;
    for (int i = 0; i < group.names.size(); ++i) {
        const QString& name = group.names.at(i);
        const bool isSame = exact.contains(name);
        const bool isAlike = folded.contains(name.toCaseFolded());
        exact.insert(name);
        folded.insert(name.toCaseFolded());
        if (isSame) {
            AddFinding(findings, group.Spot(i), "duplicate-name",
                       areFiles ? Severity::Error : Severity::Warning,
                       QStringLiteral("another %1 has the same name; %2.")
                           .arg(KindText(group.kind), Consequence(group.kind)),
                       "Rename one of them.");
        } else if (isAlike) {
            AddFinding(findings, group.Spot(i), "duplicate-name-by-case", Severity::Warning,
                       QStringLiteral("another %1 has the same name but for upper and lower case.")
                           .arg(KindText(group.kind)),
                       "Rename one of them.");
        }
    }
}

/// The reason why no file system accepts the name; empty if there is none.
QString RefusedName(const QString& name)
{
    constexpr int maxFileNameBytes = 255;
    if (name.trimmed().isEmpty()) {
        return QStringLiteral("the name is empty.");
    }
    if (LeadsUpward(name)) {
        return QStringLiteral("the name leads out of the project.");
    }
    if (!IsValidName(name)) {
        return QStringLiteral("the name holds one of < > : \" / \\ | ? *.");
    }
    if (std::any_of(name.begin(), name.end(), IsControlCharacter)) {
        return QStringLiteral("the name holds a control character.");
    }
    if (name.toUtf8().size() + int(sizeof ".tga") - 1 > maxFileNameBytes) {
        return QStringLiteral("the name is too long for a file.");
    }
    return {};
}

/// The reason why some file systems refuse or change the name; empty if there is none.
QString ReservedName(const QString& name)
{
    static const QRegularExpression device(
        QStringLiteral("^(CON|PRN|AUX|NUL|COM[0-9]|LPT[0-9])(\\..*)?$"),
        QRegularExpression::CaseInsensitiveOption);
    if (device.match(name).hasMatch()) {
        return QStringLiteral("some file systems keep the name for a device.");
    }
    if (name.endsWith(QLatin1Char('.')) || name.endsWith(QLatin1Char(' '))) {
        return QStringLiteral("some systems drop a dot or a space at the end of a name.");
    }
    return {};
}

void CheckFileNames(Kind kind, const QStringList& names, Findings& findings)
{
    for (int i = 0; i < names.size(); ++i) {
        const FindingSubject subject = {kind, kind == Kind::Project ? -1 : i};
        CheckFileName({subject, KindText(kind) + QLatin1Char(' ') + QuotedName(names.at(i))},
                      names.at(i), findings);
    }
}

} // namespace

void CheckFileName(const FindingSpot& spot, const QString& name, Findings& findings)
{
    const QString refused = RefusedName(name);
    const QString reason = refused.isEmpty() ? ReservedName(name) : refused;
    if (!reason.isEmpty()) {
        AddFinding(findings, spot, "refused-name",
                   refused.isEmpty() ? Severity::Warning : Severity::Error, reason,
                   "Give it a name that a file can have.");
    }
}

void CheckProjectNames(const ProjectNames& names, Findings& findings)
{
    CheckEqual({Kind::Layer, names.layers, {}}, findings);
    CheckEqual({Kind::Type, names.types, {}}, findings);
    CheckEqual({Kind::UsageType, names.usages, {}}, findings);
    CheckEqual({Kind::ValueType, names.values, {}}, findings);
    for (int i = 0; i < names.territories.size(); ++i) {
        CheckEqualTerritories(i, names.types.at(i), names.territories.at(i), findings);
    }
    if (names.project) {
        CheckFileNames(Kind::Project, {*names.project}, findings);
    }
    CheckFileNames(Kind::Layer, names.layers, findings);
    CheckFileNames(Kind::Type, names.types, findings);
}

void CheckEqualTerritories(int type, const QString& typeName, const QStringList& names,
                           Findings& findings)
{
    CheckEqual({Kind::Territory, names, QStringLiteral(" of type ") + QuotedName(typeName), type},
               findings);
}

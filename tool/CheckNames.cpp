#include "tool/Findings.h"

#include "app/ControlCharacters.h"
#include "app/Names.h"
#include "tool/Console.h"
#include "tool/ProjectData.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace {

/// Names of one kind that must differ from one another.
struct NameGroup
{
    /// kind is "layer" or the like; within is the text after the name in a finding's place.
    QString kind;
    QString within;
    QStringList names;
    Severity severity;
    QString consequence;
};

void CheckDuplicates(const NameGroup& group, Findings& findings)
{
    QSet<QString> exact;
    QSet<QString> folded;
    for (const QString& name : group.names) {
        const bool isSame = exact.contains(name);
        const bool isAlike = folded.contains(name.toCaseFolded());
        exact.insert(name);
        folded.insert(name.toCaseFolded());
        const QString place = group.kind + QLatin1Char(' ') + Console::Quoted(name) + group.within;
        if (isSame) {
            findings.append({QStringLiteral("duplicate-name"), group.severity, place,
                             QStringLiteral("another %1 has the same name; %2.")
                                 .arg(group.kind, group.consequence),
                             QStringLiteral("Rename one of them.")});
        } else if (isAlike) {
            findings.append({QStringLiteral("duplicate-name-by-case"), Severity::Warning, place,
                             QStringLiteral("another %1 has the same name but for upper and lower "
                                            "case.")
                                 .arg(group.kind),
                             QStringLiteral("Rename one of them.")});
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

/// The reason why some file systems refuse the name; empty if there is none.
QString ReservedName(const QString& name)
{
    static const QRegularExpression device(
        QStringLiteral("^(CON|PRN|AUX|NUL|COM[0-9]|LPT[0-9])(\\..*)?$"),
        QRegularExpression::CaseInsensitiveOption);
    if (device.match(name).hasMatch()) {
        return QStringLiteral("some file systems keep the name for a device.");
    }
    return {};
}

void CheckFileName(const QString& kind, const QString& name, Findings& findings)
{
    const QString refused = RefusedName(name);
    const QString reserved = refused.isEmpty() ? ReservedName(name) : QString();
    if (refused.isEmpty() && reserved.isEmpty()) {
        return;
    }
    findings.append(
        {QStringLiteral("refused-name"), refused.isEmpty() ? Severity::Warning : Severity::Error,
         kind + QLatin1Char(' ') + Console::Quoted(name), refused.isEmpty() ? reserved : refused,
         QStringLiteral("Give it a name that a file can have.")});
}

template <typename Items>
QStringList NamesOf(const Items& items)
{
    QStringList names;
    for (const auto& item : items) {
        names.append(item.name);
    }
    return names;
}

QStringList NamesOf(const QVector<QString>& items)
{
    return items.toList();
}

} // namespace

void CheckNames(const ProjectData& project, Findings& findings)
{
    const QStringList layers = NamesOf(project.layers);
    const QStringList types = NamesOf(project.types);
    QVector<NameGroup> groups = {
        {QStringLiteral("layer"),
         {},
         layers,
         Severity::Error,
         QStringLiteral("both read one bitmap")},
        {QStringLiteral("territory type"),
         {},
         types,
         Severity::Error,
         QStringLiteral("both are exported into one file")},
        {QStringLiteral("usage flag"),
         {},
         NamesOf(project.flagTypes.usages),
         Severity::Warning,
         QStringLiteral("nobody can tell them apart")},
        {QStringLiteral("value flag"),
         {},
         NamesOf(project.flagTypes.values),
         Severity::Warning,
         QStringLiteral("nobody can tell them apart")},
    };
    for (const TerritoryTypeData& type : project.types) {
        groups.append({QStringLiteral("territory"),
                       QStringLiteral(" of type ") + Console::Quoted(type.name),
                       NamesOf(type.territories), Severity::Warning,
                       QStringLiteral("nobody can tell them apart")});
    }
    for (const NameGroup& group : qAsConst(groups)) {
        CheckDuplicates(group, findings);
    }
    // The map gets the project's name.
    CheckFileName(QStringLiteral("project"), project.name, findings);
    for (const QString& name : layers) {
        CheckFileName(QStringLiteral("layer"), name, findings);
    }
    for (const QString& name : types) {
        CheckFileName(QStringLiteral("territory type"), name, findings);
    }
}

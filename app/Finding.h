#pragma once

#include <QString>
#include <QVector>

enum class Severity
{
    /// Suspicious, but the output is what the document says.
    Warning,
    /// The output is wrong or incomplete, or cannot be made.
    Error,
};

/// The thing that a finding is about, so that an editor can show it.
struct FindingSubject
{
    enum class Kind
    {
        /// The project as a whole, and its sizes.
        Project,
        Background,
        /// index is the type's bit.
        UsageType,
        ValueType,
        /// index is the layer's place in the list.
        Layer,
        /// A bitmap that belongs to no layer.
        Bitmap,
        /// index is the type's place in the document, territory that in the type, and zone that in
        /// the territory; all from 0.
        Type,
        Territory,
        Zone,
    };

    Kind kind = Kind::Project;
    int index = -1;
    int territory = -1;
    int zone = -1;
};

inline bool operator==(const FindingSubject& a, const FindingSubject& b)
{
    return a.kind == b.kind && a.index == b.index && a.territory == b.territory && a.zone == b.zone;
}

/// The thing, and its name in a finding, such as "layer 'Forest'".
struct FindingSpot
{
    FindingSubject subject;
    QString place;
};

/// Which of the thing's values a finding is about, where its rule has several.
enum class FindingPart
{
    Whole,
    StaticCounts,
    DynamicCounts,
    UsageFlags,
    ValueFlags,
};

/// Something in a project that makes its output wrong or surprising.
struct Finding
{
    /// Never changes, because users filter findings by it.
    QString rule;
    Severity severity = Severity::Error;
    /// The part of the project that it is about, such as "layer 'Forest'".
    QString place;
    /// What is wrong, and what to do about it: sentences.
    QString text;
    QString advice;
    FindingSubject subject = {};
    FindingPart part = FindingPart::Whole;
};

using Findings = QVector<Finding>;

/// Appends a finding about the spot. The rule and the advice are plain ASCII.
void AddFinding(Findings& findings, const FindingSpot& spot, const char* rule, Severity severity,
                const QString& text, const char* advice, FindingPart part = FindingPart::Whole);

/// The name in the quotes that findings use.
QString QuotedName(const QString& name);

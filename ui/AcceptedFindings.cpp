#include "ui/AcceptedFindings.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "ui/ProjectNotes.h"

#include <QFileInfo>
#include <QMultiHash>
#include <QPair>
#include <QUrl>

#include <utility>

namespace {

const QString Group = QStringLiteral("acceptedFindings");

constexpr QLatin1Char Separator('\n');

/// Names may hold line breaks.
QString ToPart(const QString& text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text, " '(),:"));
}

/// What findings that follow one another have in common.
using About = QPair<QPair<QString, int>, const void*>;

About AboutOf(const Problem& problem)
{
    const Finding& finding = problem.finding;
    return {{finding.rule, static_cast<int>(finding.part)}, problem.Thing()};
}

QString FromPart(const QString& part)
{
    return QUrl::fromPercentEncoding(part.toLatin1());
}

} // namespace

AcceptedFindings::AcceptedFindings(const Document& document, const Problems& problems)
    : m_document(document)
    , m_problems(problems)
{
    connect(&problems, &Problems::Changed, this, &AcceptedFindings::FollowProblems);
    connect(&document, &Document::AboutToClear, this, [this] {
        m_keys.clear();
        m_present.clear();
        m_open.clear();
        m_path.clear();
        m_written.clear();
    });
    connect(&document, &Document::HistoryBegan, this, [this](bool isSaved) {
        const ProjectSettings& settings = ProjectSettings::Instance();
        if (isSaved && !settings.FileName().isEmpty()) {
            m_keys.clear();
            Read(QFileInfo(settings.ProjectFilePath()).absoluteFilePath());
        }
    });
    connect(&document, &Document::FilesNoted, this, &AcceptedFindings::Write);
}

AcceptedFindings::Key AcceptedFindings::KeyOf(const Problem& problem)
{
    const Finding& finding = problem.finding;
    return {finding.rule, finding.place, finding.text};
}

bool AcceptedFindings::Contains(const Problem& problem) const
{
    return !m_keys.isEmpty() && m_keys.contains(KeyOf(problem));
}

void AcceptedFindings::Set(const ProblemList& problems, bool areAccepted)
{
    for (const Problem& problem : problems) {
        if (areAccepted) {
            m_keys.insert(KeyOf(problem));
        } else {
            m_keys.remove(KeyOf(problem));
        }
    }
    Write();
    Count();
    emit Changed();
}

void AcceptedFindings::FollowProblems()
{
    const ProblemList before = std::exchange(m_present, {});
    const std::vector<Problems::Part> parts = m_problems.Parts();
    if (!before.empty() && Carry(before, parts)) {
        Write();
    }
    Count();
    emit Changed();
}

/// Findings are kept by their texts, which have the numbers of zones. After an edit another zone
/// may have the number, so the present finding of the same rule about the same thing is the one
/// that was accepted: with the same text if there is one, otherwise with other numbers.
/// One that was open before is another one.
///
/// Returns whether other texts are accepted now. Any number of findings may be accepted, so none of
/// them is looked for in a list.
bool AcceptedFindings::Carry(const ProblemList& accepted, const std::vector<Problems::Part>& parts)
{
    struct Kept
    {
        const Problem* before;
        const Problem* now;
    };
    QMultiHash<About, Kept> kept;
    for (const Problem& old : accepted) {
        if (old.HasThing()) {
            kept.insert(AboutOf(old), {&old, nullptr});
        }
    }
    for (const Problems::Part& part : parts) {
        for (const Problem& each : *part) {
            if (m_open.contains({KeyOf(each), each.Thing()})) {
                // It was there beside the accepted one.
                continue;
            }
            const About about = AboutOf(each);
            for (auto it = kept.find(about); it != kept.end() && it.key() == about; ++it) {
                if (!it->now || KeyOf(each) == KeyOf(*it->before)) {
                    it->now = &each;
                }
            }
        }
    }
    QSet<Key> left;
    QSet<Key> carried;
    for (const Kept& each : qAsConst(kept)) {
        if (each.now) {
            left.insert(KeyOf(*each.before));
            carried.insert(KeyOf(*each.now));
        }
    }
    m_keys -= left;
    m_keys += carried;
    return left != carried;
}

void AcceptedFindings::Count()
{
    m_present.clear();
    m_open.clear();
    m_openCount = 0;
    m_openErrorCount = 0;
    const std::vector<Problems::Part> parts = m_problems.Parts();
    for (const Problems::Part& part : parts) {
        for (const Problem& problem : *part) {
            if (Contains(problem)) {
                m_present.push_back(problem);
                continue;
            }
            m_open.insert({KeyOf(problem), problem.Thing()});
            ++m_openCount;
            m_openErrorCount += problem.finding.severity == Severity::Error ? 1 : 0;
        }
    }
}

void AcceptedFindings::Discard(const QString& path)
{
    ProjectNotes::Write(Group, path, {});
}

/// Adds what was accepted in this project before.
void AcceptedFindings::Read(const QString& path)
{
    m_path = path;
    m_written = ProjectNotes::Read(Group, path);
    for (const QString& text : qAsConst(m_written)) {
        const QStringList parts = text.split(Separator);
        m_keys.insert(
            {FromPart(parts.value(0)), FromPart(parts.value(1)), FromPart(parts.value(2))});
    }
}

void AcceptedFindings::Write()
{
    const QString& path = m_document.Path();
    if (path.isEmpty() || !m_document.IsEditable()) {
        return;
    }
    if (m_path.isEmpty()) {
        // An earlier version or an import is saved over the project.
        Read(path);
    }
    QStringList keys;
    for (const Key& key : qAsConst(m_keys)) {
        keys.append(ToPart(key.rule) + Separator + ToPart(key.place) + Separator +
                    ToPart(key.text));
    }
    keys.sort();
    if (path != m_path || keys != m_written) {
        m_path = path;
        m_written = keys;
        ProjectNotes::Write(Group, path, keys);
    }
}

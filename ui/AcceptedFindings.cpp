#include "ui/AcceptedFindings.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "ui/ProjectNotes.h"

#include <QFileInfo>
#include <QMultiHash>
#include <QPair>
#include <QStringList>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace {

const QString Group = QStringLiteral("acceptedFindings");

constexpr QLatin1Char Separator('\n');

/// Names may hold line breaks.
QString ToPart(const QString& text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text, " '(),:"));
}

/// What findings that follow one another have in common, besides their rule.
using About = QPair<const void*, int>;

About AboutOf(const Problem& problem)
{
    return {problem.Thing(), static_cast<int>(problem.finding.part)};
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
    connect(&document, &Document::FilesNoted, this, &AcceptedFindings::WriteAll);
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
    QSet<Key> chosen;
    for (const Problem& problem : problems) {
        chosen.insert(KeyOf(problem));
    }
    const auto with = [&chosen, areAccepted](const QSet<Key>& keys) {
        return areAccepted ? keys + chosen : keys - chosen;
    };
    if (HasFile()) {
        Write(with(m_written));
    }
    m_keys = with(m_keys);
    Count();
    emit Changed();
}

void AcceptedFindings::FollowProblems()
{
    const ProblemList before = std::exchange(m_present, {});
    if (!before.empty()) {
        Carry(before, m_problems.Parts());
    }
    Count();
    emit Changed();
}

/// Findings are kept by their texts, which have the numbers of zones. After an edit another zone
/// may have the number, so the present finding of the same rule about the same thing is the one
/// that was accepted: with the same text if there is one, otherwise with other numbers.
/// A finding that was already open is not the accepted one.
///
/// Any number of findings may be accepted, so none of them is looked for in a list.
void AcceptedFindings::Carry(const ProblemList& accepted, const std::vector<Problems::Part>& parts)
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
            const About about = AboutOf(each);
            auto it = kept.find(about);
            if (it == kept.end() || m_open.contains({KeyOf(each), each.Thing()})) {
                continue;
            }
            for (; it != kept.end() && it.key() == about; ++it) {
                if (it->before->finding.rule == each.finding.rule &&
                    (!it->now || KeyOf(each) == KeyOf(*it->before))) {
                    it->now = &each;
                }
            }
        }
    }
    const bool areOthers = std::any_of(kept.cbegin(), kept.cend(), [](const Kept& each) {
        return each.now && !(KeyOf(*each.now) == KeyOf(*each.before));
    });
    if (!areOthers) {
        return;
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
}

void AcceptedFindings::Count()
{
    m_present.clear();
    m_open.clear();
    m_openCount = 0;
    m_openErrorCount = 0;
    QSet<About> accepted;
    const std::vector<Problems::Part> parts = m_problems.Parts();
    for (const Problems::Part& part : parts) {
        for (const Problem& problem : *part) {
            if (Contains(problem)) {
                m_present.push_back(problem);
                accepted.insert(AboutOf(problem));
                continue;
            }
            ++m_openCount;
            m_openErrorCount += problem.finding.severity == Severity::Error ? 1 : 0;
        }
    }
    if (accepted.isEmpty()) {
        return;
    }
    for (const Problems::Part& part : parts) {
        for (const Problem& problem : *part) {
            if (accepted.contains(AboutOf(problem)) && !Contains(problem)) {
                m_open.insert({KeyOf(problem), problem.Thing()});
            }
        }
    }
}

void AcceptedFindings::Discard(const QString& path)
{
    ProjectNotes::Write(Group, path, {});
}

bool AcceptedFindings::HasFile()
{
    const QString& path = m_document.Path();
    if (path.isEmpty() || !m_document.IsEditable()) {
        return false;
    }
    if (m_path.isEmpty()) {
        // An earlier version or an import is saved over the project.
        Read(path);
    }
    return true;
}

/// Adds what was accepted in this project before.
void AcceptedFindings::Read(const QString& path)
{
    m_path = path;
    m_written.clear();
    const QStringList texts = ProjectNotes::Read(Group, path);
    for (const QString& text : texts) {
        const QStringList parts = text.split(Separator);
        m_written.insert(
            {FromPart(parts.value(0)), FromPart(parts.value(1)), FromPart(parts.value(2))});
    }
    m_keys += m_written;
}

void AcceptedFindings::WriteAll()
{
    if (HasFile()) {
        Write(m_keys);
    }
}

void AcceptedFindings::Write(const QSet<Key>& keys)
{
    const QString& path = m_document.Path();
    if (path == m_path && keys == m_written) {
        return;
    }
    m_path = path;
    m_written = keys;
    QStringList texts;
    for (const Key& key : keys) {
        texts.append(ToPart(key.rule) + Separator + ToPart(key.place) + Separator +
                     ToPart(key.text));
    }
    texts.sort();
    ProjectNotes::Write(Group, path, texts);
}

#include "ui/Bookmarks.h"

#include "canvas/ZoomSteps.h"
#include "ui/ProjectNotes.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

const QString Group = QStringLiteral("bookmarks");

/// "4200 9800 3 Harbour": X, Z, zoom and name.
QString ToText(const Bookmark& bookmark)
{
    const auto number = [](double value) { return QString::number(value, 'g', 15); };
    return QStringList{number(bookmark.place.x()), number(bookmark.place.y()),
                       number(static_cast<double>(bookmark.zoom)), bookmark.name}
        .join(QLatin1Char(' '));
}

/// Without a name if the text is none of ToText.
Bookmark FromText(const QString& text)
{
    double numbers[3];
    for (int i = 0; i < 3; ++i) {
        bool isNumber = false;
        numbers[i] = text.section(QLatin1Char(' '), i, i).toDouble(&isNumber);
        if (!isNumber || !std::isfinite(numbers[i])) {
            return {};
        }
    }
    const auto zoom = qBound(ZoomSteps::Lowest, static_cast<float>(numbers[2]), ZoomSteps::Highest);
    return {text.section(QLatin1Char(' '), 3), {numbers[0], numbers[1]}, zoom};
}

} // namespace

void Bookmarks::Follow(const QString& path)
{
    if (path.isEmpty() || path == m_path) {
        return;
    }
    const bool hadFile = !m_path.isEmpty();
    const QVector<Bookmark> brought = All();
    m_path = path;
    m_unsaved.clear();
    if (hadFile) {
        Store(brought);
        return;
    }
    for (const Bookmark& bookmark : brought) {
        Add(bookmark);
    }
}

void Bookmarks::Discard(const QString& path)
{
    ProjectNotes::Write(Group, path, {});
}

void Bookmarks::Forget()
{
    m_path.clear();
    m_unsaved.clear();
}

QVector<Bookmark> Bookmarks::All() const
{
    if (m_path.isEmpty()) {
        return m_unsaved;
    }
    QVector<Bookmark> bookmarks;
    const QStringList texts = ProjectNotes::Read(Group, m_path);
    for (const QString& text : texts) {
        const Bookmark bookmark = FromText(text);
        if (!bookmark.name.isEmpty()) {
            bookmarks.append(bookmark);
        }
    }
    return bookmarks;
}

void Bookmarks::Add(Bookmark bookmark)
{
    QVector<Bookmark> bookmarks = All();
    const QString base = bookmark.name.simplified();
    bookmark.name = base;
    const auto isTaken = [&](const Bookmark& other) { return other.name == bookmark.name; };
    for (int i = 2; std::any_of(bookmarks.cbegin(), bookmarks.cend(), isTaken); ++i) {
        bookmark.name = QStringLiteral("%1 (%2)").arg(base, QString::number(i));
    }
    if (!base.isEmpty()) {
        bookmarks.append(bookmark);
        Store(bookmarks);
    }
}

void Bookmarks::Remove(const QString& name)
{
    QVector<Bookmark> bookmarks = All();
    const auto isIt = [&](const Bookmark& bookmark) { return bookmark.name == name; };
    bookmarks.erase(std::remove_if(bookmarks.begin(), bookmarks.end(), isIt), bookmarks.end());
    Store(bookmarks);
}

void Bookmarks::Store(const QVector<Bookmark>& bookmarks)
{
    if (m_path.isEmpty()) {
        m_unsaved = bookmarks;
        return;
    }
    QStringList texts;
    for (const Bookmark& bookmark : bookmarks) {
        texts.append(ToText(bookmark));
    }
    ProjectNotes::Write(Group, m_path, texts);
}

#pragma once

#include <QHash>
#include <QSet>
#include <QString>

/// True if a layer or a territory type may have this name, which is also a file name: it is not
/// blank, contains none of < > : " / \ | ? *, and contains only characters that XML allows.
bool IsValidName(const QString& name);

/// Whether a view carries out a rename: the new name must be different and valid.
bool IsRename(const QString& oldName, const QString& newName);

/// True if the name, as a path below a folder, contains ".." as a folder. A file of that name could
/// be anywhere.
bool LeadsUpward(const QString& name);

/// Finds names that are not taken yet.
class FreeNames
{
public:
    explicit FreeNames(const QSet<QString>& taken)
        : m_taken(taken)
    {
    }

    /// Returns the first of "base", "base (2)", "base (3)" ... that is free. It is taken from now
    /// on.
    QString Take(const QString& base);

private:
    QSet<QString> m_taken;
    /// The last number tried for each base. All numbers before it are taken.
    QHash<QString, int> m_lastNumbers;
};

/// Returns the name itself if it is valid, otherwise a similar valid one.
QString ToValidName(const QString& name);

#pragma once

#include <QHash>
#include <QSet>
#include <QString>

/// True when a layer or a territory type may have this name, which becomes a file name: something
/// is left after trimming, none of < > : " / \ | ? * is in it, and an XML document can hold it.
bool IsValidName(const QString& name);

/// Whether a rename in a view is carried out: to another name, and to a valid one.
bool IsRename(const QString& oldName, const QString& newName);

/// True when the name, as a path below a folder, has ".." for one of its folders. A file of that
/// name could be anywhere.
bool LeadsUpward(const QString& name);

/// Gives out names that are not taken yet.
class FreeNames
{
public:
    explicit FreeNames(const QSet<QString>& taken)
        : m_taken(taken)
    {
    }

    /// The first of "base", "base (2)", "base (3)" ... that is free, which is taken from now on.
    QString Take(const QString& base);

private:
    QSet<QString> m_taken;
    /// The last number tried of each base; all before it are taken.
    QHash<QString, int> m_lastNumbers;
};

/// The name itself when it is valid, otherwise a valid one that resembles it.
QString ToValidName(const QString& name);

#pragma once

#include "document/KnownFiles.h"

#include <QSet>
#include <QString>
#include <QStringList>

/// Finds the bitmaps of another project that a save replaced: those that lay in the target's folder
/// "layers" before, and that the open project neither loaded nor wrote.
class ReplacedBitmaps
{
public:
    /// Another project was opened; these bitmaps are its own, and those that it saves.
    void SetOwn(const QStringList& paths);
    /// Call it before a save to this document.
    void BeforeSave(const QString& documentPath);
    /// Call it after that save, which may have failed. Returns the names of the layers.
    QStringList AfterSave();

private:
    QString m_folder;
    KnownFiles m_before;
    /// Paths without links.
    QSet<QString> m_own;
};

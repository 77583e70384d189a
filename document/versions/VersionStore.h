#pragma once

#include "document/versions/Version.h"
#include "document/versions/VersionLimits.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <optional>
#include <system_error>

class KnownFiles;

/// Keeps earlier versions of all projects below one private folder, in "KEY/ID": KEY stands for the
/// project's path, and the ID begins with the time. What cannot be kept never stops anything else;
/// the caller is told the reason.
class VersionStore
{
public:
    explicit VersionStore(const QString& folder = DefaultFolder(),
                          const VersionLimits& limits = VersionLimits::FromSettings());

    /// "versions" in the application's data folder.
    static QString DefaultFolder();

    struct Kept
    {
        /// Why not all was kept, for the user; empty if all was.
        QString problem;
        /// The layers whose bitmaps the save replaces although the project neither loaded nor wrote
        /// them.
        QStringList replaced;
        /// Whether all that the save replaces was kept.
        bool isWhole = false;
    };
    /// Keeps what a save to the path is about to replace. Call it before anything is written.
    /// layers: the names under which the layers will be saved. known: the project's own files.
    ///
    /// The document at the path and the bitmaps that it names become a "saved" version. Other
    /// bitmaps become a "replaced" version of the project that is saved. A bitmap that is not known
    /// also becomes a version of each other project in the folder that names it. That project's
    /// document is kept with it and describes the layer. Nothing is kept that the last version of
    /// that kind holds already.
    ///
    /// A version shares the files with the project as long as the save puts new ones in their
    /// places; others are copied.
    Kept KeepBeforeSave(const QString& path, const QStringList& layers, const KnownFiles& known);
    /// Moves a journal's folder to a path where there is nothing yet. False when that fails.
    using MoveJournal = std::function<bool(const QString& target)>;
    /// Keeps the journal of unsaved work. path: the project's; empty if it was never saved. Returns
    /// the problem, for the user; empty for none.
    QString KeepDiscarded(const QString& path, const MoveJournal& moveJournal);

    /// Removes what exceeds the limits. What projects still share costs nothing until they replace
    /// it, so call this after a save.
    void Prune();

    /// The versions of all projects, the newest first. Those of the project at the path come before
    /// all others. Damaged ones are left out.
    QVector<Version> Versions(const QString& firstOf = {}) const;
    /// The versions of this project, the newest first.
    QVector<Version> VersionsOf(const QString& path) const;

private:
    struct Source;
    struct Target;

    QString ProjectFolder(const QString& path) const;
    std::optional<Version> Last(const QString& path, VersionKind kind) const;
    std::error_code Keep(VersionKind kind, const QString& path, const QVector<Source>& sources);
    std::error_code KeepReplaced(const QString& path, const QStringList& layers,
                                 const QString& folder, const QByteArray& document);

    QString m_folder;
    VersionLimits m_limits;
};

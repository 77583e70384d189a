#pragma once

#include "document/StoredProject.h"
#include "document/journal/JournalFormat.h"

#include <QDateTime>
#include <QImage>
#include <QSize>
#include <QString>
#include <QVector>

#include <memory>
#include <optional>

/// Reads the journal of a session that has ended, as it was at the last commit that is whole; or an
/// earlier version of a project, which is such a folder. Whatever the folder holds, nothing is
/// written, and only files of the folder and bitmaps of the project are read. Copies share what was
/// read. Used by one thread at a time.
class JournalReader
{
public:
    /// Reads the whole log, whose tiles stay on disk; masks and text are read when asked for.
    /// Nothing when no commit can be restored; then the reason tells why.
    static std::optional<JournalReader> Open(const QString& folder, QString* reason = nullptr);

    /// Whether the session ended before its first commit, so that its journal restores nothing.
    /// False for a journal that is damaged or of another version of the program.
    static bool IsUncommitted(const QString& folder);

    /// Where the project was on disk; empty when it was never saved.
    const QString& ProjectPath() const;
    const QString& ProjectName() const;
    QSize LayerSize() const;
    /// Whether a file of the project is no longer as it was when the session loaded or saved it
    /// last.
    bool HasProjectChanged() const;
    /// When the log was written last.
    QDateTime LastChange() const;

    int LayerCount() const;
    /// The mask of that row of the layer list; null when its base is gone or has changed, and
    /// without memory. A bitmap that is no mask of the layer size is logged.
    QImage Mask(int row) const;
    /// The rows whose masks are gone, without reading them.
    QVector<int> MissingMasks() const;
    /// Null when it is no longer as it was at Open.
    QByteArray Text() const;

    /// Text and masks, which have the layer size of the header, whatever the text says.
    StoredProject Stored() const;

private:
    class Content;

    explicit JournalReader(std::shared_ptr<const Content> content);

    std::shared_ptr<const Content> m_content;
};

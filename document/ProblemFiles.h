#pragma once

#include "app/Finding.h"

#include <QSize>
#include <QString>
#include <QStringList>
#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>

/// What the rules about a project's files look at, as plain values of one moment.
struct ProjectFacts
{
    /// The path of the document; empty while no file holds the project. Only the background is
    /// looked at then.
    QString path;
    /// The folder with the bitmaps.
    QString bitmapFolder;
    /// The names of the layers in the order of the list, and of those that the load left out.
    QStringList layers;
    QStringList leftOut;
    /// The names of the layers in the document's file. In the editor they may have other names now,
    /// or may have been removed.
    QStringList saved;
    QSize layerSize;
    /// The path of the background picture; empty for none.
    QString background;
    /// Whether other programs may have written the bitmaps, which may end too early then.
    bool areBitmapsForeign = false;
};

struct FileFindings
{
    Findings bitmaps;
    /// Such as "does not exist."; empty for a good picture and for none.
    QString backgroundFault;
};

/// Looks at the files, which may take long where disks are slow. It changes nothing, and ends early
/// with part of the findings when isCancelled returns true.
FileFindings LookAtFiles(const ProjectFacts& facts, const std::function<bool()>& isCancelled);

/// Looks at the files of a project on a thread.
class ProblemFiles
{
public:
    ProblemFiles();
    /// Cancels, and waits until nothing is read any more.
    ~ProblemFiles();
    Q_DISABLE_COPY(ProblemFiles)

    using Taker = std::function<void(const FileFindings& found)>;
    /// Begins to look; what was begun before is cancelled. take: called on the thread of context,
    /// which outlives this object, unless it is cancelled.
    void Begin(const ProjectFacts& facts, QObject* context, const Taker& take);
    void Cancel();
    bool IsBusy() const { return m_job != nullptr; }

private:
    struct Job
    {
        std::atomic<bool> isCancelled{false};
    };

    std::shared_ptr<Job> m_job;
    QThreadPool m_pool;
};

#pragma once

#include "app/ProjectReader.h"

#include <QPointer>
#include <QString>
#include <QVector>

#include <functional>
#include <optional>

class NoticeBar;
class QDialog;

/// What a load found in a document.
struct ReadReport
{
    struct LeftOutLayer
    {
        QString name;
        /// A sentence; empty if nothing is known.
        QString reason;
    };

    /// Of the document, without its folder. Empty for a state that belongs to no file.
    QString fileName;
    /// False for "Failed to parse input.".
    bool isRead = false;
    bool holdsProject = false;
    std::optional<DocumentFault> fault;
    QVector<LeftOutLayer> leftOut;
    /// All layers that the document lists.
    int layerCount = 0;

    /// Whether the document says all that the open project holds, so that a save into it loses
    /// nothing.
    bool IsWhole() const { return isRead && holdsProject && !fault; }
};

/// Tells in the bar above the map what may cost the user work in the open project. It asks nothing,
/// and the log stays as it is.
class ProjectNotices
{
public:
    explicit ProjectNotices(NoticeBar& bar);
    ~ProjectNotices();
    Q_DISABLE_COPY(ProjectNotices)

    /// Another project takes the place of the open one: what was told about that one goes.
    void Withdraw();
    void ShowRead(const ReadReport& report);
    /// The project was opened for viewing only. edit: loads it for editing.
    void ShowViewing(const QString& name, const std::function<void()>& edit);
    /// The project was saved: what would be lost by that is no question any more.
    void FollowSave();
    /// A save replaced the bitmaps of these layers, which belonged to another project. areKept:
    /// the old ones are among the earlier versions.
    void ShowReplaced(const QStringList& layers, bool areKept,
                      const std::function<void()>& showVersions);
    /// Why an earlier version could not be kept; empty when all is well.
    void ShowUnkept(const QString& problem);
    /// Territory types are exported: all, or only those that are ticked.
    void FollowExport(bool tickedOnly, int ticked, int all);
    /// "Save and export all" was chosen, which does nothing without layers.
    void FollowSaveAll(bool hasLayers);

private:
    void ShowLeftOut(const ReadReport& report);
    void ListLeftOut(const QVector<ReadReport::LeftOutLayer>& layers);

    NoticeBar& m_bar;
    QPointer<QDialog> m_list;
};

#pragma once

#include "document/journal/Journal.h"
#include "tests/support/DocumentFixture.h"
#include "tests/support/JournalSession.h"

#include <memory>

class Zone;

/// A saved project with three layers and a zone, whose changes are kept in a journal.
class JournalledDocument : public DocumentFixture
{
public:
    JournalledDocument();

    Layer* LayerAt(int row) const { return document.Layers().LayerAt(row); }
    Zone* FirstZone() const;
    /// A stroke as the brush makes it: the mask changes in place before there is an edit.
    void Stroke(Layer& layer, const QRect& rect, uchar value, bool isEnded = true);
    bool Save();
    QString Path(const QString& fileName) const { return project.Path(fileName); }
    QString DocumentPath() const { return Path(QStringLiteral("project.xml")); }
    /// What a save would write.
    QByteArray Text();
    bool IsAnythingWritten() const;
    /// Why the journal of the folder does not hold the present state; empty when it does.
    QString Difference(const QString& folder);
    /// The same for the present journal, after it was written.
    QString Unkept();

    DataFolder data;
    std::unique_ptr<Journal> journal;
};

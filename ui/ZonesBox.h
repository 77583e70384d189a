#pragma once

#include "app/Tracked.h"
#include "territories/Zone.h"
#include "territories/ZoneTable.h"

#include <QGroupBox>
#include <QTimer>
#include <QVector>

#include <vector>

class Document;
class QComboBox;
class QGridLayout;
class QLineEdit;

/// The box "Selected zones (20)", in which the user changes all selected zones at once, whatever
/// territories hold them. A field shows what all zones have in common and is blank where they
/// differ. An entry is committed by Enter or by leaving the field, and is one step of the history:
/// a number, or a change of each zone's own one (see BulkEntry.h).
class ZonesBox : public QGroupBox
{
    Q_OBJECT

public:
    explicit ZonesBox(QWidget* parent = nullptr);

    /// The project whose zones are changed; it outlives the box.
    void SetDocument(Document& document);
    /// Shows and changes these zones. Without any the box is disabled.
    void ShowZones(const QVector<Zone*>& zones);
    /// Commits what was typed and not yet committed, as leaving its field does. Returns whether
    /// there was any.
    bool CommitPending();

private:
    struct Field
    {
        ZoneColumn column;
        QLineEdit* line;
        /// What it showed before it was edited.
        QString shown;
    };

    void AddNumber(QGridLayout& grid, int index);
    void AddUsage(QGridLayout& grid, int row);
    void AddEvent(QGridLayout& grid, int row);
    void Refresh();
    void FollowHistory();
    QVector<Zone*> Present() const;
    void Commit(Field& field);
    void CommitUsage(int index);
    void CommitEvent();
    template <typename Change>
    void ChangeZones(const QString& what, Change change);

    Document* m_document = nullptr;
    QVector<Tracked<Zone>> m_zones;
    std::vector<Field> m_fields;
    QComboBox* m_usage = nullptr;
    QLineEdit* m_event = nullptr;
    QTimer m_refresh;
};

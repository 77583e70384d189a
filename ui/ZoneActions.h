#pragma once

#include "ui/EditorParts.h"

#include <QObject>
#include <QVector>

#include <vector>

class QAction;
class QPointF;
class QString;
class Territory;
class Zone;
class ZoneSheets;

/// The entries of the menu Zones that edit: the selected zones, of whatever territories, and the
/// current territory; and those that take zones from files and write them there.
class ZoneActions : public QObject
{
public:
    /// sheets: files of rows; it outlives the actions.
    ZoneActions(const EditorParts& parts, ZoneSheets& sheets);

private:
    template <typename Deed>
    void Connect(QAction* action, Deed deed);
    void ConnectActions();
    void ShowState();
    /// Other territories of the current territory's type.
    QVector<Territory*> Neighbours() const;
    void Move();
    void Align();
    void Scatter();
    void SendTo(bool doesCopy);
    void Split();
    void Join();
    void Duplicate();
    void PutAt(const QString& text, const QVector<Zone*>& zones,
               const std::vector<QPointF>& places);
    void SelectNewest(const Territory& holder, int count);

    EditorParts m_parts;
    ZoneSheets& m_sheets;
};

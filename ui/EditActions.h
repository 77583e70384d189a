#pragma once

#include "ui/EditorParts.h"

#include <QObject>

class Territory;
struct EditPlace;

/// The actions of the Edit menu: undo and redo, which show what they changed, and what is done with
/// the selection.
class EditActions : public QObject
{
public:
    explicit EditActions(const EditorParts& parts);

private:
    void ShowHistory();
    void Undo();
    void ShowPlace(const EditPlace& place);
    void ShowTerritory(const Territory& territory);
    void ScrollTo(const QRectF& area);
    void Delete();
    void SelectAllZones();

    EditorParts m_parts;
};

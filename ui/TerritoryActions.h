#pragma once

#include "ui/EditorParts.h"

#include <QObject>

class Territory;

/// The entries of the menu Zones that make types and territories, and those about what is seen of
/// zones. What is not seen is transparent: check marks and the project stay as they are.
class TerritoryActions : public QObject
{
public:
    explicit TerritoryActions(const EditorParts& parts);

private:
    void ConnectSolo();
    void ShowState();
    void AddType();
    void AddTerritory();
    void ShowSolo();
    void ShowZonesOf(const Territory* territory) const;
    void ShowLabels(bool areShown);

    EditorParts m_parts;
};

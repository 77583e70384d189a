#pragma once

#include "ui/EditorParts.h"

#include <QObject>
#include <QString>

#include <memory>

class Edit;
class Layer;
class LayerComposition;
class QAction;

/// The entries of the menu Layer that are about the current layer and about which layers are shown.
class LayerActions : public QObject
{
public:
    LayerActions(const EditorParts& parts, LayerComposition& composition);

private:
    template <typename Deed>
    void Connect(QAction* action, Deed deed);
    void ConnectActions();
    void ShowState();
    Layer* Editable();
    void Do(const Layer& layer, std::unique_ptr<Edit> edit);
    void Duplicate();
    void Fill(const QString& text, uchar value);
    void Invert();
    void Grow(bool doesGrow);
    void AddRing();
    void Merge();
    void ShowAll();

    EditorParts m_parts;
    LayerComposition& m_composition;
};

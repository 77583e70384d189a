#pragma once

#include "ui/EditorParts.h"

#include <QObject>
#include <QVector>

#include <memory>

class Edit;
class Layer;
class QAction;

/// The entries of the menu Layer that are about computed layers: they are computed anew, or follow
/// the layers that they are made of.
class DerivedActions : public QObject
{
public:
    explicit DerivedActions(const EditorParts& parts);

private:
    void ShowState();
    void Update();
    void UpdateAll();
    void SetLive(bool isLive);
    bool RefuseCycle(const QVector<int>& ids) const;
    bool TellRefused(const QVector<int>& ids) const;
    template <typename TakesEdited>
    QVector<Layer*> Outdated(const QVector<int>& order, TakesEdited takesEdited) const;
    QVector<Layer*> AskOutdated(const QVector<int>& ids) const;
    void Compute(std::unique_ptr<Edit> edit, const QVector<Layer*>& layers) const;
    void UpdateLayers(const QVector<int>& ids);

    EditorParts m_parts;
};

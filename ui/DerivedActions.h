#pragma once

#include "ui/EditorParts.h"

#include <QObject>
#include <QVector>

#include <optional>

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
    std::optional<QVector<Layer*>> Outdated(const QVector<int>& ids, bool isAll) const;
    void UpdateLayers(const QVector<int>& ids, bool isAll);

    EditorParts m_parts;
};

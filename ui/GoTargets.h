#pragma once

#include <QPointF>
#include <QString>
#include <QVector>

#include <functional>
#include <optional>

class Bookmarks;
class Document;
class SceneScale;

/// Something with a name that the map can go to.
struct GoTarget
{
    QString name;
    /// The name, or where several have it, the name and what it is of; no two are the same.
    QString label;
    /// What it is: "layer", "territory of Deer", "bookmark".
    QString kind;
    /// Its middle in the scene; nothing if it is empty. It is looked for on request only, and what
    /// it belongs to must still exist.
    std::function<std::optional<QPointF>()> place;
    /// The zoom that it brings; 0 for none.
    float zoom = 0;
};

/// The territories, layers and bookmarks of the project. scale must be usable.
QVector<GoTarget> FindGoTargets(const Document& document, const Bookmarks& bookmarks,
                                const SceneScale& scale);

#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

class Document;
class Layer;

/// Marks the rows of the layers by icons and tool tips, and keeps which layers are locked or shown
/// alone in the user's settings, for each project.
class LayerMarks : public QObject
{
public:
    explicit LayerMarks(Document& document);
    ~LayerMarks() override;
    Q_DISABLE_COPY(LayerMarks)

private:
    /// Layers by the names that the project's document has for them.
    struct Notes
    {
        QString path;
        QStringList locked;
        /// The layer that is shown alone, or nothing.
        QStringList solo;

        bool operator==(const Notes& other) const
        {
            return path == other.path && locked == other.locked && solo == other.solo;
        }
    };

    QVariant Mark(const Layer& layer, int role) const;
    /// What the row tells, a line each; empty for nothing.
    QString ToolTip(const Layer& layer) const;
    void FollowFiles();
    void Read(const QString& path);
    void Write();

    Document& m_document;
    /// What the layers are called in the project's document, by their ids. Names change before the
    /// document does.
    QHash<int, QString> m_namesInFile;
    /// What the settings hold.
    Notes m_notes;
};

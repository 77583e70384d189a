#pragma once

#include <QString>
#include <QXmlStreamReader>

#include <functional>
#include <optional>

class QIODevice;

/// Where the text of a document stops being XML.
struct DocumentFault
{
    /// In Qt's words.
    QString reason;
    /// Counted from 1.
    qint64 line = 0;
};

/// Whether the file is a project document. Reads its beginning only; false if it cannot be read.
bool IsProjectDocument(const QString& path);

/// Reads a project document for the editor. The order of its elements does not matter: the sizes
/// and flag types, on which layers and zones depend, are read in a first pass. What stands within
/// an element that is read belongs to that element alone: an "areas" in "layers" sets no flag
/// types.
class ProjectReader
{
public:
    /// Read the element whose start tag the reader stands on, up to its end tag; that of the brush
    /// reads attributes only. A false result ends the reading.
    struct Handlers
    {
        std::function<void(QXmlStreamReader&)> brush;
        std::function<bool(QXmlStreamReader&)> layers;
        std::function<bool(QXmlStreamReader&)> territoryTypes;
    };

    /// The device must be open and seekable.
    explicit ProjectReader(QIODevice& device);

    /// Returns false if a handler failed. A document that ends early or is malformed elsewhere is
    /// read up to that place.
    bool Read(const Handlers& handlers);
    /// The fault that Read ended at; none when the whole document was read.
    std::optional<DocumentFault> Fault() const;
    /// Whether Read met an element of a project. Flag types alone make none, because they also
    /// have files of their own.
    bool HoldsProject() const { return m_holdsProject; }
    /// The row of the layer that was selected when the project was saved; -1 for none.
    int SelectedRow() const { return m_selectedRow; }
    /// Called during Read, by code that Read calls: makes Read fail at the next element.
    void Stop();

private:
    void ReadSettings();

    QIODevice& m_device;
    QXmlStreamReader m_xml;
    int m_selectedRow = -1;
    bool m_holdsProject = false;
};

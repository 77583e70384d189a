#pragma once

#include "territories/ZoneTable.h"

#include <QString>

#include <functional>
#include <vector>

class Document;
class QWidget;
class Zone;
struct ZoneSheet;

/// Zones as rows of text: the clipboard of the table, and CSV files. What is taken is one step of
/// the history, all of it or nothing; rows that cannot be taken are listed in a dialog.
class ZoneSheets
{
public:
    /// document: the project; parent: of dialogs. Both outlive it.
    ZoneSheets(Document& document, QWidget& parent);

    /// Puts the rows into the clipboard, with a header and separated by tabs.
    static void Copy(const std::vector<ZoneRow>& rows);
    /// Takes the rows of the clipboard. mayChange: which zones may be changed. Returns what was
    /// done, for the user; empty if a dialog has told it.
    QString Paste(const std::function<bool(const Zone&)>& mayChange);
    /// Asks for a file and takes its rows.
    void Import();
    /// Asks for a file and writes all zones of the project into it.
    void Export();

private:
    QString Take(const ZoneSheet& sheet, const QString& step,
                 const std::function<bool(const Zone&)>& mayChange);

    Document& m_document;
    QWidget& m_parent;
};

#include "territories/ZoneSheet.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringList>
#include <QTextCodec>

#include <algorithm>
#include <optional>

namespace {

const QLatin1String ZonesKey("zones");
const QChar Quote = QLatin1Char('"');

/// Bytes. A row takes about a hundred.
constexpr int MaxFileSize = 64 << 20;

QString NoColumn(const QString& name)
{
    // Spreadsheets write them where the comma is the decimal sign.
    const int end = name.indexOf(QLatin1Char(';'));
    if (end >= 0 && ZoneColumnNamed(name.left(end))) {
        return QStringLiteral("its cells are separated by semicolons, not by commas or tabs");
    }
    return QStringLiteral("there is no column '%1'").arg(SheetExcerpt(name));
}

QString CellOf(QString text, QChar separator)
{
    const bool isPlain = std::none_of(text.cbegin(), text.cend(), [separator](QChar character) {
        return character == separator || character == Quote || character == QLatin1Char('\n') ||
               character == QLatin1Char('\r');
    });
    return isPlain ? text : Quote + text.replace(Quote, QStringLiteral("\"\"")) + Quote;
}

QString SeparatedText(const std::vector<ZoneRow>& rows, QChar separator)
{
    QString text;
    const auto addLine = [&](const auto& cellOf) {
        for (const ZoneColumn column : ZoneColumns) {
            if (column != ZoneColumns.front()) {
                text += separator;
            }
            text += CellOf(cellOf(column), separator);
        }
        text += QLatin1Char('\n');
    };
    addLine(Key);
    for (const ZoneRow& row : rows) {
        addLine([&row](ZoneColumn column) { return CellText(row, column); });
    }
    return text;
}

QString JsonText(const std::vector<ZoneRow>& rows)
{
    QJsonArray zones;
    for (const ZoneRow& row : rows) {
        QJsonObject zone;
        for (const ZoneColumn column : ZoneColumns) {
            const QString text = CellText(row, column);
            zone.insert(Key(column), IsNumber(column) ? QJsonValue(text.toDouble()) : text);
        }
        zones.append(zone);
    }
    return QString::fromUtf8(QJsonDocument(QJsonObject{{ZonesKey, zones}}).toJson());
}

/// The records of a text with separators, one after the other.
class Records
{
public:
    Records(const QString& text, QChar separator)
        : m_text(text)
        , m_separator(separator)
    {
    }

    bool IsAtEnd() const { return m_at >= m_text.size(); }
    /// Whether the record that was read last ends within quotes.
    bool IsOpen() const { return m_isOpen; }

    QStringList Next()
    {
        QStringList cells = {NextCell()};
        while (m_hasMoreCells) {
            cells.append(NextCell());
        }
        return cells;
    }

private:
    QString NextCell()
    {
        QString cell;
        m_isOpen = false;
        m_hasMoreCells = false;
        for (bool isFirst = true; !IsAtEnd(); isFirst = false) {
            const QChar character = m_text.at(m_at++);
            if (m_isOpen) {
                TakeQuoted(character, cell);
            } else if (character == Quote && isFirst) {
                m_isOpen = true;
            } else if (character == m_separator) {
                m_hasMoreCells = true;
                break;
            } else if (IsLineEnd(character)) {
                break;
            } else {
                cell += character;
            }
        }
        return cell;
    }

    void TakeQuoted(QChar character, QString& cell)
    {
        const bool isDoubled = character == Quote && !IsAtEnd() && m_text.at(m_at) == Quote;
        if (isDoubled) {
            ++m_at;
        }
        m_isOpen = character != Quote || isDoubled;
        if (m_isOpen) {
            cell += character;
        }
    }

    /// Passes over the rest of a line end of two characters.
    bool IsLineEnd(QChar character)
    {
        if (character == QLatin1Char('\r') && !IsAtEnd() && m_text.at(m_at) == QLatin1Char('\n')) {
            ++m_at;
            return true;
        }
        return character == QLatin1Char('\r') || character == QLatin1Char('\n');
    }

    const QString& m_text;
    QChar m_separator;
    int m_at = 0;
    bool m_isOpen = false;
    bool m_hasMoreCells = false;
};

bool IsBlank(const QStringList& cells)
{
    return std::all_of(cells.begin(), cells.end(),
                       [](const QString& cell) { return cell.trimmed().isEmpty(); });
}

/// The column of each cell of a header; none for a cell without a name.
using Header = std::vector<std::optional<ZoneColumn>>;

/// Returns what is wrong with the header; empty if nothing is.
QString ReadHeader(const QStringList& names, Header& header)
{
    for (const QString& name : names) {
        const std::optional<ZoneColumn> column = ZoneColumnNamed(name);
        if (!column && !name.trimmed().isEmpty()) {
            return NoColumn(name);
        }
        if (column && std::find(header.begin(), header.end(), column) != header.end()) {
            return QStringLiteral("there are two columns '%1'").arg(Key(*column));
        }
        header.push_back(column);
    }
    return {};
}

/// Returns what is wrong with the cells; empty if nothing is.
QString TakeCells(const QStringList& cells, const Header& header, SheetRow& row)
{
    for (int i = 0; i < cells.size(); ++i) {
        const auto index = static_cast<std::size_t>(i);
        if (index < header.size() && header[index]) {
            row.cells.at(static_cast<std::size_t>(*header[index])) = cells.at(i);
        } else if (!cells.at(i).trimmed().isEmpty()) {
            return QStringLiteral("'%1' stands in no column").arg(SheetExcerpt(cells.at(i)));
        }
    }
    return {};
}

ZoneSheet ReadSeparated(const QString& text, QChar separator)
{
    ZoneSheet sheet;
    Records records(text, separator);
    Header header;
    for (int number = 1; !records.IsAtEnd(); ++number) {
        const QStringList cells = records.Next();
        SheetRow row{number, {}};
        QString reason;
        if (IsBlank(cells)) {
            continue;
        }
        if (records.IsOpen()) {
            reason = QStringLiteral("a quote is not closed");
        } else if (header.empty()) {
            reason = ReadHeader(cells, header);
        } else {
            reason = TakeCells(cells, header, row);
            sheet.rows.push_back(row);
        }
        if (!reason.isEmpty()) {
            sheet.refusals.push_back({number, reason});
        }
        if (!reason.isEmpty() && sheet.rows.empty()) {
            break; // without a header no row means anything
        }
    }
    if (header.empty() && sheet.refusals.empty()) {
        sheet.fault = QStringLiteral("it holds no rows");
    }
    return sheet;
}

/// Returns what is wrong with the entry; empty if nothing is.
QString TakeEntry(const QJsonObject& entry, SheetRow& row)
{
    constexpr int digits = 15;
    for (auto it = entry.begin(); it != entry.end(); ++it) {
        const std::optional<ZoneColumn> column = ZoneColumnNamed(it.key());
        const QJsonValue value = it.value();
        if (!column) {
            return NoColumn(it.key());
        }
        if (!value.isNull() && !value.isDouble() && !value.isString()) {
            return QStringLiteral("%1 is neither a text nor a number").arg(Key(*column));
        }
        QString& cell = row.cells.at(static_cast<std::size_t>(*column));
        if (!cell.isEmpty()) {
            return QStringLiteral("there are two columns '%1'").arg(Key(*column));
        }
        cell = value.isDouble() ? QString::number(value.toDouble(), 'g', digits) : value.toString();
    }
    return {};
}

ZoneSheet ReadJson(const QString& text)
{
    ZoneSheet sheet;
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    const QJsonValue zones =
        document.isArray() ? QJsonValue(document.array()) : document.object().value(ZonesKey);
    if (error.error != QJsonParseError::NoError) {
        sheet.fault = QStringLiteral("it is no JSON: %1").arg(error.errorString());
    } else if (!zones.isArray()) {
        sheet.fault = QStringLiteral("there is no array \"%1\" in it").arg(ZonesKey);
    }
    const QJsonArray entries = zones.toArray();
    for (int i = 0; i < entries.size(); ++i) {
        SheetRow row{i + 1, {}};
        const QString reason = entries.at(i).isObject() ? TakeEntry(entries.at(i).toObject(), row)
                                                        : QStringLiteral("it is no object");
        if (!reason.isEmpty()) {
            sheet.refusals.push_back({row.number, reason});
        }
        sheet.rows.push_back(row);
    }
    return sheet;
}

} // namespace

QString SheetRefusal::Text() const
{
    return row == 0 ? reason : QStringLiteral("row %1: %2").arg(QString::number(row), reason);
}

QString SheetExcerpt(const QString& text)
{
    constexpr int limit = 40;
    return text.size() > limit ? text.left(limit) + QStringLiteral("...") : text;
}

QString WriteSheet(const std::vector<ZoneRow>& rows, SheetFormat format)
{
    switch (format) {
    case SheetFormat::Tabs:
        return SeparatedText(rows, QLatin1Char('\t'));
    case SheetFormat::Csv:
        return SeparatedText(rows, QLatin1Char(','));
    case SheetFormat::Json:
        break;
    }
    return JsonText(rows);
}

ZoneSheet ReadSheet(const QString& text)
{
    const QString sheet = text.startsWith(QChar(QChar::ByteOrderMark)) ? text.mid(1) : text;
    const QString content = sheet.trimmed();
    if (content.startsWith(QLatin1Char('[')) || content.startsWith(QLatin1Char('{'))) {
        return ReadJson(sheet);
    }
    const bool hasTabs =
        content.leftRef(content.indexOf(QLatin1Char('\n'))).contains(QLatin1Char('\t'));
    return ReadSeparated(sheet, QLatin1Char(hasTabs ? '\t' : ','));
}

ZoneSheet ReadSheetFile(QFile& file)
{
    constexpr qint64 blockSize = 1 << 20;
    ZoneSheet sheet;
    QByteArray bytes;
    for (QByteArray block = file.read(blockSize); !block.isEmpty() && bytes.size() <= MaxFileSize;
         block = file.read(blockSize)) {
        bytes += block;
    }
    if (file.error() != QFileDevice::NoError) {
        sheet.fault = QStringLiteral("it cannot be read: %1").arg(file.errorString());
        return sheet;
    }
    if (bytes.size() > MaxFileSize) {
        sheet.fault = QStringLiteral("it is too large");
        return sheet;
    }
    QTextCodec::ConverterState state;
    const QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0) {
        sheet.fault = QStringLiteral("it is no UTF-8");
        return sheet;
    }
    return ReadSheet(text);
}

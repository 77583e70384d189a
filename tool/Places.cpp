#include "tool/Places.h"

#include "tool/Console.h"
#include "tool/Interruption.h"

#include <QByteArray>
#include <QRegularExpression>

#include <cmath>
#include <cstdio>
#include <optional>

namespace {

/// Bytes. No two numbers need more.
constexpr int MaxLineLength = 1000;
/// All places are kept until the last is read, and an input may be endless.
constexpr std::size_t MaxPlaces = 1000000;

bool ParseNumber(const QString& text, PlaceUnit unit, double& number)
{
    bool isNumber = false;
    number = unit == PlaceUnit::Pixels ? text.toInt(&isNumber) : text.toDouble(&isNumber);
    return isNumber && std::isfinite(number);
}

/// The next line of the standard input, or its first MaxLineLength + 1 bytes if it is longer.
/// Nothing at the end, and if reading fails.
std::optional<QByteArray> NextLine()
{
    QByteArray line;
    int byte = std::getc(stdin);
    if (byte == EOF) {
        return {};
    }
    for (; byte != EOF && byte != '\n' && line.size() <= MaxLineLength; byte = std::getc(stdin)) {
        line.append(static_cast<char>(byte));
    }
    return line;
}

/// Returns what is wrong with the line; empty if nothing is.
QString TakeLine(const QByteArray& line, PlaceUnit unit, std::vector<PlaceNumbers>& places)
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    if (line.size() > MaxLineLength) {
        return QStringLiteral("is too long.");
    }
    const QString text = QString::fromUtf8(line).trimmed();
    if (text.isEmpty()) {
        return {};
    }
    const QStringList texts = text.split(blanks);
    if (texts.size() != 2) {
        return QStringLiteral("two numbers are needed, and nothing else.");
    }
    if (places.size() == MaxPlaces) {
        return QStringLiteral("there are more than %1 places.").arg(MaxPlaces);
    }
    PlaceNumbers place;
    QString error = ParsePlace(texts, unit, place);
    if (error.isEmpty()) {
        places.push_back(place);
    }
    return error;
}

} // namespace

QString ParsePlace(const QStringList& texts, PlaceUnit unit, PlaceNumbers& place)
{
    for (int i = 0; i < 2; ++i) {
        const QString text = texts.at(i).trimmed();
        if (!ParseNumber(text, unit, i == 0 ? place.first : place.second)) {
            return (unit == PlaceUnit::Pixels ? QStringLiteral("%1 is no number of a pixel.")
                                              : QStringLiteral("%1 is no number of metres."))
                .arg(Console::Quoted(text));
        }
    }
    return {};
}

bool ReadPlaces(PlaceUnit unit, std::vector<PlaceNumbers>& places)
{
    const QString input = QStringLiteral("standard input");
    int number = 1;
    for (auto line = NextLine(); line; line = NextLine(), ++number) {
        const QString error = TakeLine(*line, unit, places);
        if (!error.isEmpty()) {
            Console::PrintError(input, QStringLiteral("line %1: %2").arg(number).arg(error));
            return false;
        }
    }
    // An interruption also ends the reading with an error.
    if (Interruption::HasCome()) {
        return false;
    }
    if (std::ferror(stdin) != 0) {
        Console::PrintError(input, QStringLiteral("cannot be read."));
        return false;
    }
    return true;
}

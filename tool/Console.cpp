#include "tool/Console.h"

#include "app/ControlCharacters.h"
#include "app/Finding.h"
#include "tool/Interruption.h"

#include <QtGlobal>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace Console {
namespace {

struct State
{
    bool isQuiet = false;
    bool isWhole = true;
    bool hasBar = false;
    QString file = QStringLiteral("quillmap-tool");
};

State& TheState()
{
    static State state;
    return state;
}

/// True for characters that change the direction in which a terminal shows the text after them.
bool TurnsDirection(QChar character)
{
    const ushort code = character.unicode();
    return code == 0x061C || code == 0x200E || code == 0x200F ||
           (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

QString OneLine(const QString& text)
{
    QString line = ToConsoleLine(text);
    std::replace_if(line.begin(), line.end(), TurnsDirection, QLatin1Char(' '));
    return line;
}

void Write(const QByteArray& text)
{
    // What an interrupted command knows is not the whole.
    if (Interruption::HasCome()) {
        return;
    }
    RemoveBar();
    const auto count = static_cast<std::size_t>(text.size());
    TheState().isWhole =
        std::fwrite(text.constData(), 1, count, stdout) == count && TheState().isWhole;
}

/// Removes the time of day with which logged lines begin.
QString WithoutTime(const QString& line)
{
    constexpr int timeLength = 11;
    return line.mid(8, 3) == QLatin1String(" - ") ? line.mid(timeLength) : line;
}

void TakeMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg) {
        PrintError(TheState().file, WithoutTime(message));
    }
    if (type == QtFatalMsg) {
        std::abort();
    }
}

} // namespace

void SetQuiet(bool isQuiet)
{
    TheState().isQuiet = isQuiet;
}

bool IsQuiet()
{
    return TheState().isQuiet;
}

void ShowBar(const QString& text)
{
    TheState().hasBar = true;
    std::fputs((QLatin1Char('\r') + text).toUtf8().constData(), stderr);
    std::fflush(stderr);
}

void RemoveBar()
{
    if (TheState().hasBar) {
        TheState().hasBar = false;
        std::fputs("\r\033[K", stderr);
        std::fflush(stderr);
    }
}

void Print(const QString& line)
{
    if (!IsQuiet()) {
        Write(OneLine(line).toUtf8() + '\n');
    }
}

void PrintData(const QByteArray& text)
{
    Write(text);
}

void PrintError(const QString& file, const QString& what)
{
    // Failures after an interruption are its consequence.
    if (Interruption::HasCome()) {
        return;
    }
    const QString line = OneLine(file + QStringLiteral(": ") + what);
    RemoveBar();
    std::fputs((line.toUtf8() + '\n').constData(), stderr);
}

bool Flush()
{
    if (std::fflush(stdout) == 0 && TheState().isWhole) {
        return true;
    }
    PrintError(QStringLiteral("standard output"), QStringLiteral("cannot be written."));
    return false;
}

void TakeMessages()
{
    qInstallMessageHandler(TakeMessage);
}

CurrentFile::CurrentFile(const QString& file)
    : m_before(TheState().file)
{
    TheState().file = file;
}

CurrentFile::~CurrentFile()
{
    TheState().file = m_before;
}

QString Quoted(const QString& name)
{
    return QuotedName(name);
}

} // namespace Console

#pragma once

#include <QString>

/// How a run ended, for the pipeline that started it.
enum class ToolExit : int
{
    Done = 0,
    /// There are findings or differences.
    Found = 1,
    BadArguments = 2,
    Unreadable = 3,
    NotWritten = 4,
};

/// What the tool says: results on the standard output, errors on the standard error, both UTF-8 and
/// without control characters that names in files may hold.
namespace Console {

/// Nothing but errors and JSON is said.
void SetQuiet(bool isQuiet);
bool IsQuiet();

/// A line on the standard error that stays until something is printed or another one is shown.
void ShowBar(const QString& text);
void RemoveBar();

/// One line of the result; not when quiet.
void Print(const QString& line);
/// Text as it is, also when quiet.
void PrintData(const QByteArray& text);
/// "FILE: what is wrong"; nothing after an interruption.
void PrintError(const QString& file, const QString& what);
/// False, after an error, when the standard output did not take everything.
bool Flush();

/// From now on what the libraries log is an error about the current file, or nothing.
void TakeMessages();

/// The file that the libraries are at work on, while this lives.
class CurrentFile
{
public:
    explicit CurrentFile(const QString& file);
    ~CurrentFile();
    Q_DISABLE_COPY(CurrentFile)

private:
    QString m_before;
};

/// Name of a thing in quotes, as messages have it.
QString Quoted(const QString& name);

} // namespace Console

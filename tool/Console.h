#pragma once

#include <QString>

/// How a run ended, for the pipeline that started it.
enum class ToolExit : int
{
    Done = 0,
    /// There are findings (check) or differences (compare).
    Found = 1,
    BadArguments = 2,
    Unreadable = 3,
    NotWritten = 4,
};

/// The tool's output: results go to the standard output, errors to the standard error. Both are
/// UTF-8. Control characters, which names in files may contain, are replaced.
namespace Console {

/// When quiet, only errors and JSON are printed.
void SetQuiet(bool isQuiet);
bool IsQuiet();

/// Shows a line on the standard error until something is printed or another line is shown.
void ShowBar(const QString& text);
void RemoveBar();

/// Prints one line of the result, unless quiet.
void Print(const QString& line);
/// Prints the text unchanged, also when quiet.
void PrintData(const QByteArray& text);
/// Prints "FILE: what is wrong". Prints nothing after an interruption.
void PrintError(const QString& file, const QString& what);
/// Returns false after printing an error if the standard output did not take everything.
bool Flush();

/// From now on, errors that the libraries log are printed as errors about the current file. Their
/// other messages are dropped.
void TakeMessages();

/// While this object exists, logged errors are about this file.
class CurrentFile
{
public:
    explicit CurrentFile(const QString& file);
    ~CurrentFile();
    Q_DISABLE_COPY(CurrentFile)

private:
    QString m_before;
};

/// The name in the quotes that messages use.
QString Quoted(const QString& name);

} // namespace Console

#pragma once

#include <QByteArray>
#include <QString>

class Document;
class QWidget;

// A session that a program writes down while it works, for the test that kills it.

/// A point in the session.
enum class SessionMoment : char
{
    /// Something was done since the last save, maybe without effect.
    Unsaved = 'u',
    /// The project's files hold the state.
    Saved = 's',
    /// The state is about to be saved.
    SaveBegins = 'b',
    /// The user has agreed to lose the state by loading.
    LoadBegins = 'l',
};

/// A line of the file.
struct SessionLine
{
    /// Of a clock that all processes share.
    qint64 milliseconds = 0;
    SessionMoment moment = SessionMoment::Unsaved;
    /// The path of the project.
    QString path;
    /// Of StateHash.
    QByteArray state;
};

/// Milliseconds of that clock.
qint64 SharedClock();
/// The SHA-1, in hexadecimal digits, of all that a save keeps of the document, without what is no
/// edit: brush and selection.
QByteArray StateHash(Document& document);
QByteArray ToBytes(const SessionLine& line);
/// Reads ToBytes.
SessionLine ToSessionLine(const QByteArray& bytes);

/// Says yes to the question of a load, and chooses the file in its dialog.
void AnswerLoad(QWidget& dialog, const QString& path);

#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <vector>

/// Answers the modal dialogs that open while it exists, with one answer for each, in order. A
/// dialog without an answer is closed and fails the test.
class ModalAnswers : public QObject
{
public:
    using Answer = std::function<void(QWidget& dialog)>;

    ModalAnswers();
    /// Fails the running test if answers are left.
    ~ModalAnswers() override;

    void Add(const Answer& answer) { m_answers.push_back(answer); }
    /// Clicks the message box's button with that text, such as "Yes".
    void AddButton(const QString& text);
    /// Types the path into a file dialog and accepts it.
    void AddFile(const QString& path);
    void AddCancel();
    /// Answers every dialog that has no answer of its own.
    void SetOtherwise(const Answer& answer) { m_otherwise = answer; }

    /// The dialogs so far: "title: text" of message boxes, "title" of others.
    QStringList Asked() const { return m_asked; }

private:
    void AnswerOne();

    QTimer m_timer;
    std::vector<Answer> m_answers;
    Answer m_otherwise;
    size_t m_next = 0;
    QPointer<QWidget> m_answered;
    QStringList m_asked;
};

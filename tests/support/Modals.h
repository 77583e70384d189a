#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <vector>

/// Answers the modal dialogs that open while it lives, one answer for each, in order. A dialog for
/// which there is no answer is closed and fails the test.
class ModalAnswers : public QObject
{
public:
    using Answer = std::function<void(QWidget& dialog)>;

    ModalAnswers();
    /// Fails the running test when answers are left.
    ~ModalAnswers() override;

    void Add(const Answer& answer) { m_answers.push_back(answer); }
    /// Clicks the message box's button of that text, "Yes" say.
    void AddButton(const QString& text);
    /// Types the path into a file dialog and accepts it.
    void AddFile(const QString& path);
    void AddCancel();
    /// Answers every dialog for which there is no answer of its own.
    void SetOtherwise(const Answer& answer) { m_otherwise = answer; }

    /// What was asked so far: "title: text" of message boxes, "title" of other dialogs.
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

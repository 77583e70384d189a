#include "tests/support/Modals.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>

namespace {

QString Question(const QWidget& dialog)
{
    const auto* box = qobject_cast<const QMessageBox*>(&dialog);
    return box ? box->windowTitle() + QStringLiteral(": ") + box->text() : dialog.windowTitle();
}

void Click(QWidget& dialog, const QString& text)
{
    const QList<QAbstractButton*> buttons = dialog.findChildren<QAbstractButton*>();
    for (QAbstractButton* button : buttons) {
        if (button->isVisible() && button->text().remove(QLatin1Char('&')) == text) {
            button->click();
            return;
        }
    }
    QFAIL(qPrintable(QStringLiteral("There is no button '%1'.").arg(text)));
}

} // namespace

ModalAnswers::ModalAnswers()
{
    constexpr int milliseconds = 5;
    connect(&m_timer, &QTimer::timeout, this, &ModalAnswers::AnswerOne);
    m_timer.setInterval(milliseconds);
    m_timer.start();
}

ModalAnswers::~ModalAnswers()
{
    if (m_next < m_answers.size()) {
        QTest::qFail(
            qPrintable(
                QStringLiteral("%1 answers were not asked for.").arg(m_answers.size() - m_next)),
            __FILE__, __LINE__);
    }
}

void ModalAnswers::AddButton(const QString& text)
{
    Add([text](QWidget& dialog) { Click(dialog, text); });
}

void ModalAnswers::AddFile(const QString& path)
{
    Add([path](QWidget& dialog) {
        auto* fileDialog = qobject_cast<QFileDialog*>(&dialog);
        QVERIFY2(fileDialog, qPrintable(Question(dialog)));
        const QString file = fileDialog->directory().absoluteFilePath(path);
        fileDialog->selectFile(file);
        // Selecting the file does not change the name while its field has the focus.
        fileDialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(file);
        static_cast<QDialog*>(fileDialog)->accept();
    });
}

void ModalAnswers::AddCancel()
{
    Add([](QWidget& dialog) {
        if (auto* asDialog = qobject_cast<QDialog*>(&dialog)) {
            asDialog->reject();
        }
    });
}

void ModalAnswers::AnswerOne()
{
    // A timer does not fire again during its own timeout, but an answer may open the next dialog.
    m_timer.start();
    // The editor's window is modal too.
    QWidget* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog || dialog == m_answered) {
        return;
    }
    m_answered = dialog;
    m_asked.append(Question(*dialog));
    const bool hasOwnAnswer = m_next < m_answers.size();
    if (hasOwnAnswer || m_otherwise) {
        (hasOwnAnswer ? m_answers[m_next++] : m_otherwise)(*dialog);
        // A dialog may stay open and be answered again.
        m_answered = nullptr;
        return;
    }
    QTest::qFail(qPrintable(QStringLiteral("No answer for '%1'.").arg(m_asked.last())), __FILE__,
                 __LINE__);
    dialog->close();
}

#include "ui/widgets/ElidedLabel.h"

#include <QApplication>
#include <QHelpEvent>
#include <QTest>
#include <QToolTip>

class tst_ElidedLabel : public QObject
{
    Q_OBJECT

private slots:
    void AsksForItsWholeText();
    void EndsWithAnEllipsisWhereItIsTooNarrow();
    void LooksLikeAnyLabelWhereItIsWide();
    void ShowsTheWholeTextInAToolTip();

private:
    static QString ToolTip(ElidedLabel& label)
    {
        const QPoint place(2, 2);
        QHelpEvent event(QEvent::ToolTip, place, label.mapToGlobal(place));
        QApplication::sendEvent(&label, &event);
        return event.isAccepted() ? QToolTip::text() : QString();
    }
};

void tst_ElidedLabel::AsksForItsWholeText()
{
    ElidedLabel label;
    label.setText(QStringLiteral("X step = 187.5 m"));
    label.resize(label.sizeHint());
    QCOMPARE(label.ElidedText(), label.text());

    label.resize(label.width() - 1, label.height());
    QVERIFY(label.ElidedText() != label.text());
    QVERIFY(label.minimumSizeHint().width() < label.sizeHint().width() / 2);
    QCOMPARE(label.minimumSizeHint().height(), label.sizeHint().height());
}

void tst_ElidedLabel::EndsWithAnEllipsisWhereItIsTooNarrow()
{
    ElidedLabel label;
    label.setText(QStringLiteral("X step = 187.5 m"));
    label.resize(label.sizeHint().width() - 20, label.sizeHint().height());
    ElidedLabel shown;
    shown.setText(label.ElidedText());
    shown.resize(label.size());

    QVERIFY(label.ElidedText().endsWith(QChar(0x2026)));
    QCOMPARE(label.text(), QStringLiteral("X step = 187.5 m"));
    QCOMPARE(label.grab().toImage(), shown.grab().toImage());
}

void tst_ElidedLabel::LooksLikeAnyLabelWhereItIsWide()
{
    ElidedLabel label;
    QLabel plain;
    for (QLabel* each : {static_cast<QLabel*>(&label), &plain}) {
        each->setText(QStringLiteral("X: 1 px = 7.5 m"));
        each->resize(200, 40);
    }
    QCOMPARE(label.grab().toImage(), plain.grab().toImage());

    label.setEnabled(false);
    plain.setEnabled(false);
    QCOMPARE(label.grab().toImage(), plain.grab().toImage());
}

void tst_ElidedLabel::ShowsTheWholeTextInAToolTip()
{
    ElidedLabel label;
    label.setText(QStringLiteral("<b>187.5 m"));
    label.resize(30, label.sizeHint().height());
    label.show();
    QCOMPARE(ToolTip(label), QStringLiteral("&lt;b&gt;187.5 m"));
    label.setToolTip(QStringLiteral("its own"));
    QCOMPARE(ToolTip(label), QStringLiteral("its own"));
    label.setToolTip(QString());

    label.resize(label.sizeHint());
    QCOMPARE(ToolTip(label), QString());
}

QTEST_MAIN(tst_ElidedLabel)
#include "tst_ElidedLabel.moc"

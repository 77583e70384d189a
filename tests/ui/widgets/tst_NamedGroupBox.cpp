#include "ui/widgets/NamedGroupBox.h"

#include <QApplication>
#include <QHelpEvent>
#include <QLabel>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>

namespace {

QString LongName()
{
    return QString(200, QLatin1Char('m'));
}

/// A shown box of 200 pixels around a label.
class Fixture
{
public:
    explicit Fixture(const QString& title)
    {
        (new QVBoxLayout(&box))->addWidget(new QLabel(QStringLiteral("inside")));
        box.setTitle(title);
        box.resize(200, 100);
        box.show();
    }

    QString ToolTipAt(QPoint position)
    {
        QHelpEvent event(QEvent::ToolTip, position, box.mapToGlobal(position));
        QApplication::sendEvent(&box, &event);
        return event.isAccepted() ? QToolTip::text() : QString();
    }

    NamedGroupBox box;
};

} // namespace

class tst_NamedGroupBox : public QObject
{
    Q_OBJECT

private slots:
    void LongTitlesDoNotWidenIt();
    void LongTitlesAreElided();
    void ShowsTheWholeNameOverItsTitle();
};

void tst_NamedGroupBox::LongTitlesDoNotWidenIt()
{
    const Fixture brief(QStringLiteral("m"));
    const Fixture fixture(LongName());

    QCOMPARE(fixture.box.minimumSizeHint(), brief.box.minimumSizeHint());
    QCOMPARE(fixture.box.sizeHint(), brief.box.sizeHint());
    QVERIFY(fixture.box.minimumSizeHint().height() >
            fixture.box.layout()->contentsMargins().top() + fixture.box.fontMetrics().height());
}

void tst_NamedGroupBox::LongTitlesAreElided()
{
    Fixture whole(QStringLiteral("m"));
    Fixture fixture(LongName());
    Fixture longer(LongName() + LongName());

    QCOMPARE(fixture.box.grab().toImage(), longer.box.grab().toImage());
    QVERIFY(fixture.box.grab().toImage() != whole.box.grab().toImage());
    QGroupBox plain;
    plain.setTitle(QStringLiteral("m"));
    (new QVBoxLayout(&plain))->addWidget(new QLabel(QStringLiteral("inside")));
    plain.resize(200, 100);
    QCOMPARE(whole.box.grab().toImage(), plain.grab().toImage());
}

void tst_NamedGroupBox::ShowsTheWholeNameOverItsTitle()
{
    Fixture fixture(QStringLiteral("<b>Deer && Wolf") + LongName());

    QCOMPARE(fixture.ToolTipAt({50, 5}), QStringLiteral("&lt;b&gt;Deer &amp; Wolf") + LongName());
    QCOMPARE(fixture.ToolTipAt({50, 90}), QString());
    fixture.box.setTitle(QStringLiteral("Deer"));
    QCOMPARE(fixture.ToolTipAt({50, 5}), QString());
}

QTEST_MAIN(tst_NamedGroupBox)
#include "tst_NamedGroupBox.moc"

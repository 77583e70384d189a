#include "ui/UnsavedMark.h"

#include "tests/support/WindowFixture.h"

#include <QMenuBar>
#include <QTest>

/// The age of unsaved changes at the right of the menu bar.
class tst_UnsavedMark : public QObject
{
    Q_OBJECT

private slots:
    void ShowsTheAge_data();
    void ShowsTheAge();
    void IsHiddenWithoutChanges();
    void FollowsTheClock();
    void StandsWholeInTheMenuBar();
};

void tst_UnsavedMark::ShowsTheAge_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");

    QTest::newRow("in the future") << qint64(-100) << "● now";
    QTest::newRow("now") << qint64(0) << "● now";
    QTest::newRow("almost a minute") << qint64(59) << "● now";
    QTest::newRow("a minute") << qint64(60) << "● 1 min";
    QTest::newRow("minutes") << qint64(3 * 60 + 59) << "● 3 min";
    QTest::newRow("almost an hour") << qint64(3599) << "● 59 min";
    QTest::newRow("an hour") << qint64(3600) << "● 1 h 0 min";
    QTest::newRow("hours") << qint64(2 * 3600 + 5 * 60) << "● 2 h 5 min";
    QTest::newRow("days") << qint64(50 * 3600 + 60) << "● 50 h 1 min";
}

void tst_UnsavedMark::ShowsTheAge()
{
    QFETCH(qint64, seconds);
    QFETCH(QString, text);
    QCOMPARE(UnsavedMark::TextFor(seconds), text);
}

void tst_UnsavedMark::IsHiddenWithoutChanges()
{
    UnsavedMark mark;
    QVERIFY(mark.isHidden());
    mark.SetSince(QDateTime::currentDateTimeUtc().addDays(-1));
    QVERIFY(!mark.isHidden());
    QVERIFY(mark.text().startsWith("● 24 h "));
    mark.SetSince({});
    QVERIFY(mark.isHidden());
}

void tst_UnsavedMark::FollowsTheClock()
{
    UnsavedMark mark;
    // Half a second is left of the minute.
    mark.SetSince(QDateTime::currentDateTime().addMSecs(-179500));
    QTRY_COMPARE(mark.text(), QString("● 3 min"));
    // The clock may be set back.
    mark.SetSince(QDateTime::currentDateTime().addDays(1));
    QCOMPARE(mark.text(), QString("● now"));
}

void tst_UnsavedMark::StandsWholeInTheMenuBar()
{
    const WindowFixture fixture;
    auto* mark = fixture.Child<UnsavedMark>("lblUnsaved");
    const auto* bar = fixture.Child<QMenuBar>("menuBar");
    QCOMPARE(bar->cornerWidget(Qt::TopRightCorner), mark);
    QVERIFY(mark->isHidden());
    const int height = bar->height();
    // The text becomes longer and shorter.
    for (const qint64 age : {1, 60 * 60 * 20, 60 * 3, 60 * 60 * 100}) {
        mark->SetSince(QDateTime::currentDateTime().addSecs(-age));
        QTRY_VERIFY2(mark->isVisible() && bar->rect().contains(mark->geometry()) &&
                         mark->width() >= mark->sizeHint().width() &&
                         mark->geometry().right() == bar->rect().right(),
                     qPrintable(mark->text()));
        QCOMPARE(bar->height(), height);
        QVERIFY(!mark->toolTip().isEmpty());
    }
    mark->SetSince({});
    QVERIFY(!mark->isVisible());
}

QTEST_MAIN(tst_UnsavedMark)
#include "tst_UnsavedMark.moc"

#include "ui/widgets/NoticeBar.h"

#include <QAbstractButton>
#include <QLabel>
#include <QTest>

class tst_NoticeBar : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void IsHiddenWithoutNotices();
    void ShowsOneNoticeAtATime();
    void ANewerNoticeReplacesTheOneOfItsKey();
    void AButtonKeepsTheNoticeUntilItIsDone();
    void AButtonMayShowAnotherNotice();

private:
    QString Text() const { return m_bar->findChild<QLabel*>(QStringLiteral("lblNotice"))->text(); }
    void Click(const char* button)
    {
        auto* widget = m_bar->findChild<QAbstractButton*>(QLatin1String(button));
        QVERIFY(widget);
        QTest::mouseClick(widget, Qt::LeftButton);
    }

    std::unique_ptr<NoticeBar> m_bar;
};

void tst_NoticeBar::init()
{
    m_bar = std::make_unique<NoticeBar>();
}

void tst_NoticeBar::IsHiddenWithoutNotices()
{
    QVERIFY(m_bar->isHidden());
    m_bar->Show({"a", "The file changed.", {}});
    QVERIFY(!m_bar->isHidden());
    m_bar->Withdraw("b");
    QVERIFY(!m_bar->isHidden());
    m_bar->Withdraw("a");
    QVERIFY(m_bar->isHidden());
}

void tst_NoticeBar::ShowsOneNoticeAtATime()
{
    m_bar->Show({"a", "First", {}});
    const auto* count = m_bar->findChild<QLabel*>(QStringLiteral("lblNoticeCount"));
    QVERIFY(count->isHidden());
    m_bar->Show({"b", "Second", {}});
    QCOMPARE(Text(), QStringLiteral("First"));
    QVERIFY(!count->isHidden());
    QCOMPARE(count->text(), QStringLiteral("1 of 2"));
    Click("btnNoticeClose");
    QCOMPARE(Text(), QStringLiteral("Second"));
    QVERIFY(count->isHidden());
    QVERIFY(!m_bar->Has("a"));
    Click("btnNoticeClose");
    QVERIFY(m_bar->isHidden());
}

void tst_NoticeBar::ANewerNoticeReplacesTheOneOfItsKey()
{
    m_bar->Show({"a", "First", {}});
    m_bar->Show({"b", "Second", {}});
    m_bar->Show({"a", "First, newer", {}});
    QCOMPARE(Text(), QStringLiteral("First, newer"));
    m_bar->Withdraw("a");
    QCOMPARE(Text(), QStringLiteral("Second"));
}

void tst_NoticeBar::AButtonKeepsTheNoticeUntilItIsDone()
{
    bool isDone = false;
    m_bar->Show({"a", "First", {{"btnTry", "Try", [&] { return isDone; }}}});
    m_bar->Show({"b", "Second", {}});
    Click("btnTry");
    QCOMPARE(Text(), QStringLiteral("First"));
    isDone = true;
    Click("btnTry");
    QCOMPARE(Text(), QStringLiteral("Second"));
    QVERIFY(!m_bar->findChild<QAbstractButton*>(QStringLiteral("btnTry")));
}

void tst_NoticeBar::AButtonMayShowAnotherNotice()
{
    m_bar->Show({"a", "First", {{"btnTry", "Try", [&] {
                                     m_bar->Withdraw("a");
                                     m_bar->Show({"b", "Second", {}});
                                     return true;
                                 }}}});
    Click("btnTry");
    QCOMPARE(Text(), QStringLiteral("Second"));
}

QTEST_MAIN(tst_NoticeBar)
#include "tst_NoticeBar.moc"

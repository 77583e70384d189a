#include "ui/NameList.h"

#include <QTest>

class tst_NameList : public QObject
{
    Q_OBJECT

private slots:
    void ShortensTexts_data();
    void ShortensTexts();
    void NamesTheFirstOfMany_data();
    void NamesTheFirstOfMany();
};

void tst_NameList::ShortensTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");

    QTest::newRow("short") << "Lake"
                           << "Lake";
    QTest::newRow("just short enough") << QString(40, 'x') << QString(40, 'x');
    QTest::newRow("too long") << QString(41, 'x') << QString(39, 'x') + QChar(0x2026);
    QTest::newRow("lines") << " a\n\tb "
                           << "a b";
    QTest::newRow("empty") << ""
                           << "";
}

void tst_NameList::ShortensTexts()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QCOMPARE(ShortText(text), shown);
}

void tst_NameList::NamesTheFirstOfMany_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("shown");

    const QString name(41, 'x');
    QTest::newRow("none") << QStringList() << "";
    QTest::newRow("two") << QStringList{"a", "b"} << "a, b";
    QTest::newRow("five") << QStringList{"a", "b", "c", "d", "e"} << "a, b, c, d, e";
    QTest::newRow("six") << QStringList{"a", "b", "c", "d", "e", "f"} << "a, b, c, d, e and 1 more";
    QTest::newRow("a name like a place for a number")
        << QStringList{"%2", "b", "c", "d", "e", "f", "g"} << "%2, b, c, d, e and 2 more";
    QTest::newRow("a long one") << QStringList{name, "b"} << ShortText(name) + ", b";
}

void tst_NameList::NamesTheFirstOfMany()
{
    QFETCH(QStringList, names);
    QFETCH(QString, shown);
    QCOMPARE(NameList(names), shown);
}

QTEST_GUILESS_MAIN(tst_NameList)
#include "tst_NameList.moc"

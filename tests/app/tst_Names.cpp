#include "app/Names.h"

#include <QtTest>

class tst_Names : public QObject
{
    Q_OBJECT

private slots:
    void NamesThatCanBeFileNamesAreValid_data();
    void NamesThatCanBeFileNamesAreValid();
    void RenamesAreToOtherValidNames();
    void NamesThatLeadUpwardAreTold_data();
    void NamesThatLeadUpwardAreTold();
    void ValidNamesAreKept_data();
    void ValidNamesAreKept();
    void InvalidNamesBecomeValidOnesThatResembleThem_data();
    void InvalidNamesBecomeValidOnesThatResembleThem();
    void FreeNamesAreTheFirstThatAreNotTaken();
    void ManyFreeNamesAreFoundWithoutTryingAllAgain();
};

void tst_Names::NamesThatCanBeFileNamesAreValid_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isValid");
    QTest::newRow("letters, digits and spaces") << "North Hills 2" << true;
    QTest::newRow("accents") << "Forêt" << true;
    QTest::newRow("dots") << ".." << true;
    QTest::newRow("other punctuation") << "a-b_c+d (2) [x] 'y' #1 %1" << true;
    QTest::newRow("blanks around") << " coast " << true;
    QTest::newRow("null") << QString() << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("blanks only") << " \t " << false;
    for (const char* forbidden : {"<", ">", ":", "\"", "/", "\\", "|", "?", "*"}) {
        const QByteArray row(forbidden);
        QTest::newRow(("with " + row).constData()) << QString("co%1ast").arg(forbidden) << false;
        QTest::newRow(("only " + row).constData()) << QString(forbidden) << false;
    }
    QTest::newRow("tab, which a document escapes") << "co\tast" << true;
    QTest::newRow("byte order mark") << QString(QChar(0xFEFF)) + "coast" << true;
    QTest::newRow("beyond the basic plane") << QString::fromUtf8("co\U0001F3F0ast") << true;
    for (const ushort unwritable : {0x0, 0x1, 0xB, 0x1F, 0xD83C, 0xDFF0, 0xFFFE, 0xFFFF}) {
        QTest::addRow("with U+%04X, which no document holds", unwritable)
            << "co" + QString(QChar(unwritable)) + "ast" << false;
    }
}

void tst_Names::NamesThatCanBeFileNamesAreValid()
{
    QFETCH(QString, name);
    QFETCH(bool, isValid);
    QCOMPARE(IsValidName(name), isValid);
}

void tst_Names::RenamesAreToOtherValidNames()
{
    QVERIFY(IsRename("coast", "Coast"));
    QVERIFY(IsRename("a/b", "coast"));
    QVERIFY(!IsRename("coast", "coast"));
    QVERIFY(!IsRename("coast", "a/b"));
    QVERIFY(!IsRename("coast", " "));
    QVERIFY(!IsRename("a/b", "a/b"));
}

void tst_Names::NamesThatLeadUpwardAreTold_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isUpward");
    QTest::newRow("plain") << "coast" << false;
    QTest::newRow("below") << "north/coast" << false;
    QTest::newRow("from the root") << "/coast" << false;
    QTest::newRow("upward") << "../coast" << true;
    QTest::newRow("down and up") << "north/../coast" << true;
    QTest::newRow("up behind two slashes") << "north//../coast" << true;
    // With the file's suffix these are ordinary names.
    QTest::newRow("only dots") << ".." << false;
    QTest::newRow("dots at the end") << "north/.." << false;
    QTest::newRow("dots in a folder's name") << "..north/so..uth/west../..." << false;
}

void tst_Names::NamesThatLeadUpwardAreTold()
{
    QFETCH(QString, name);
    QTEST(LeadsUpward(name), "isUpward");
}

void tst_Names::ValidNamesAreKept_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << "coast";
    QTest::newRow("blanks around") << " coast ";
    QTest::newRow("dots") << "..";
}

void tst_Names::ValidNamesAreKept()
{
    QFETCH(QString, name);
    QCOMPARE(ToValidName(name), name);
}

void tst_Names::InvalidNamesBecomeValidOnesThatResembleThem_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("validName");
    QTest::newRow("path upward") << "../coast"
                                 << ".._coast";
    QTest::newRow("all forbidden characters") << QStringLiteral("a<>:\"/\\|?*b") << "a_________b";
    QTest::newRow("vertical tab and null") << QString("a\vb") + QChar::Null << "ab";
    QTest::newRow("half a surrogate pair")
        << "a" + QString(QChar(0xD83C)) << "a" + QString(QChar(0xFFFD));
    QTest::newRow("empty") << ""
                           << "Unnamed";
    QTest::newRow("blanks only") << "  "
                                 << "Unnamed";
}

void tst_Names::InvalidNamesBecomeValidOnesThatResembleThem()
{
    QFETCH(QString, name);
    QFETCH(QString, validName);
    QVERIFY(!IsValidName(name));
    QCOMPARE(ToValidName(name), validName);
    QVERIFY(IsValidName(validName));
}

void tst_Names::FreeNamesAreTheFirstThatAreNotTaken()
{
    FreeNames names({"coast", "coast (3)", "town (2)"});
    for (const char* name : {"coast (2)", "coast (4)", "coast (5)"}) {
        QCOMPARE(names.Take("coast"), name);
    }
    for (const char* name : {"town", "town (3)"}) {
        QCOMPARE(names.Take("town"), name);
    }
    QCOMPARE(names.Take("coast (4)"), "coast (4) (2)");
    QCOMPARE(names.Take("coast (6)"), "coast (6)");
    QCOMPARE(names.Take("coast"), "coast (7)");
}

void tst_Names::ManyFreeNamesAreFoundWithoutTryingAllAgain()
{
    // If all numbers were tried for each name, this would run into the test's time limit.
    constexpr int count = 200000;
    FreeNames names({"coast"});
    QSet<QString> given;
    for (int i = 0; i < count; ++i) {
        given.insert(names.Take("coast"));
    }
    QCOMPARE(given.size(), count);
    QCOMPARE(names.Take("coast"), QString("coast (%1)").arg(count + 2));
}

QTEST_GUILESS_MAIN(tst_Names)

#include "tst_Names.moc"

#include "app/NameRules.h"

#include <QtTest>

using Kind = FindingSubject::Kind;

/// What the rules of `quillmap-tool check` do not show: the subjects of findings.
class tst_NameRules : public QObject
{
    Q_OBJECT

private slots:
    void LaterNamesAreTheSubjects();
    void FileNamesAreThoseOfTheirThings();
};

void tst_NameRules::LaterNamesAreTheSubjects()
{
    Findings findings;
    CheckProjectNames({{}, {"a", "b", "B", "a"}, {}, {}, {}, {}}, findings);
    QCOMPARE(findings.size(), 2);
    QCOMPARE(findings.at(0).rule, QString("duplicate-name-by-case"));
    QVERIFY(findings.at(0).subject == (FindingSubject{Kind::Layer, 2}));
    QCOMPARE(findings.at(1).severity, Severity::Error);
    QVERIFY(findings.at(1).subject == (FindingSubject{Kind::Layer, 3}));

    CheckEqualTerritories(5, "Deer", {"x", "x"}, findings);
    QCOMPARE(findings.size(), 3);
    QCOMPARE(findings.last().place, QString("territory 'x' of type 'Deer'"));
    QCOMPARE(findings.last().severity, Severity::Warning);
    QVERIFY(findings.last().subject == (FindingSubject{Kind::Territory, 5, 1}));
}

void tst_NameRules::FileNamesAreThoseOfTheirThings()
{
    Findings findings;
    CheckProjectNames({{}, {}, {"good", "CON", "a.", "b "}, {}, {}, {}}, findings);
    QCOMPARE(findings.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(findings.at(i).subject == (FindingSubject{Kind::Type, i + 1}));
        QCOMPARE(findings.at(i).severity, Severity::Warning);
    }
    CheckProjectNames({QString("a|b"), {}, {}, {}, {}, {}}, findings);
    QVERIFY(findings.last().subject == FindingSubject{});
    QCOMPARE(findings.last().severity, Severity::Error);
}

QTEST_APPLESS_MAIN(tst_NameRules)
#include "tst_NameRules.moc"

#include "tests/support/RandomUser.h"

#include <QTest>

/// A user who performs random actions in the editor's window. QUILLMAP_ACTIONS sets how many.
class tst_RandomUser : public QObject
{
    Q_OBJECT

private slots:
    void LeavesEverythingInOrder();
};

void tst_RandomUser::LeavesEverythingInOrder()
{
    bool isSet = false;
    const int wanted = qEnvironmentVariableIntValue("QUILLMAP_ACTIONS", &isSet);
    const int count = isSet ? wanted : 3000;
    constexpr int actionsBetweenSaves = 500;
    constexpr int actionsBetweenUndos = 40;
    RandomUser user;
    QStringList done;
    for (int i = 1; i <= count; ++i) {
        done.append(user.Act());
        if (done.size() > 12) {
            done.removeFirst();
        }
        const QString contradiction = user.Contradiction();
        QVERIFY2(contradiction.isEmpty(), qPrintable(QStringLiteral("%1 After action %2: %3")
                                                         .arg(contradiction)
                                                         .arg(i)
                                                         .arg(done.join(QStringLiteral(", ")))));
        if (i % actionsBetweenUndos == 0) {
            const QString lost = user.LostByUndoing();
            QVERIFY2(lost.isEmpty(), qPrintable(QStringLiteral("%1 After action %2: %3")
                                                    .arg(lost)
                                                    .arg(i)
                                                    .arg(done.join(QStringLiteral(", ")))));
        }
        if (i % actionsBetweenSaves == 0) {
            const QString lost = user.LostBySaving();
            QVERIFY2(lost.isEmpty(), qPrintable(lost));
        }
    }
}

QTEST_MAIN(tst_RandomUser)
#include "tst_RandomUser.moc"

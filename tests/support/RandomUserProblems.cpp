#include "tests/support/RandomUser.h"

#include "document/Problems.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QTest>

// What the dock of problems is for.

void RandomUser::WorkOnProblems()
{
    if (m_random.Below(4) == 0) {
        if (QWidget* badge = OneOf({"lblProblems"})) {
            QTest::mouseClick(badge, Qt::LeftButton);
        }
    }
    if (m_random.Below(2) == 0) {
        // The user looks at the list when it is complete.
        Problems& problems = window->ProjectProblems();
        problems.Hurry();
        if (!QTest::qWaitFor([&problems] { return problems.IsUpToDate(); })) {
            return;
        }
    }
    auto* view = qobject_cast<QAbstractItemView*>(OneOf({"viewProblems"}));
    if (!view) {
        return;
    }
    const int rows = view->model()->rowCount();
    if (rows > 0) {
        const QModelIndex index = view->model()->index(m_random.Below(rows), 1);
        view->scrollTo(index);
        const QPoint at = view->visualRect(index).center();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
        if (m_random.Below(3) == 0) {
            QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
        }
    }
    if (m_random.Below(4) == 0) {
        // Something may change the project between the choice and the button.
        Stroke();
    }
    auto* button = qobject_cast<QAbstractButton*>(
        OneOf({"btnFindingFix", "btnFindingFix", "btnFindingAccept", "chkFindingsAccepted"}));
    if (button) {
        button->click();
    }
}

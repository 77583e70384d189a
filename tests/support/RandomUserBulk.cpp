#include "tests/support/RandomUser.h"

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QTest>

// The boxes for selected zones and for moving them, and what is seen of zones.

void RandomUser::EnterForZones()
{
    if (m_random.Below(2) == 0) {
        Trigger("actionSelectAllZones");
    }
    QWidget* field = OneOf({"txtZonesX", "txtZonesZ", "txtZonesRadius", "txtZonesStaticMin",
                            "txtZonesStaticMax", "txtZonesDynamicMin", "txtZonesDynamicMax",
                            "txtZonesDepth", "txtZonesEvent", "cboZonesUsage"});
    if (auto* usage = qobject_cast<QComboBox*>(field)) {
        usage->setCurrentIndex(m_random.Between(-1, usage->count() - 1));
        return;
    }
    auto* line = qobject_cast<QLineEdit*>(field);
    if (!line) {
        return;
    }
    const QStringList entries{QString(),
                              QStringLiteral("+50"),
                              QStringLiteral("-7.25"),
                              QStringLiteral("*1.1"),
                              QStringLiteral("*-3"),
                              QStringLiteral("=-20"),
                              QStringLiteral("1e300"),
                              QStringLiteral("Water"),
                              QStringLiteral("a\"<b"),
                              QString::number(m_random.Below(1000))};
    line->setFocus();
    line->selectAll();
    QTest::keyClick(line, Qt::Key_Delete);
    QTest::keyClicks(line, entries[m_random.Below(entries.size())]);
    // An entry may also be left, or still be there when something else happens.
    switch (m_random.Below(4)) {
    case 0:
        break;
    case 1:
        QTest::keyClick(line, Qt::Key_Tab);
        break;
    default:
        QTest::keyClick(line, Qt::Key_Return);
    }
}

void RandomUser::ChooseMoves()
{
    QWidget* field = OneOf({"cboNudge", "cboSnap", "spnSnapGrid"});
    if (auto* choice = qobject_cast<QComboBox*>(field)) {
        choice->setCurrentIndex(m_random.Below(choice->count()));
    } else if (auto* grid = qobject_cast<QSpinBox*>(field)) {
        grid->setValue(m_random.Between(1, 200));
    }
}

void RandomUser::LookAtZones()
{
    static const char* const actions[] = {"actionTerritorySolo", "actionTerritorySolo",
                                          "actionZoneLabels", "actionTypeNew",
                                          "actionTerritoryNew"};
    switch (m_random.Below(3)) {
    case 0:
        Trigger(actions[m_random.Below(int(std::size(actions)))]);
        break;
    case 1:
        QTest::keyClick(&View(), Qt::Key_W);
        break;
    default:
        if (auto* filter = qobject_cast<QLineEdit*>(OneOf({"txtTerritoriesFilter"}))) {
            filter->setText(m_random.Below(3) == 0 ? QStringLiteral("er") : QString());
        }
    }
}

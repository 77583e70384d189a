#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "tests/support/RandomUser.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>

// What the menu Zones is for.

void RandomUser::ZoneAction()
{
    static const char* const growing[] = {"actionZonesCopyTo", "actionTerritoryDuplicate",
                                          "actionZonesScatter"};
    static const char* const others[] = {
        "actionZonesMove",   "actionZonesMove",  "actionZonesAlign",     "actionZonesMoveTo",
        "actionZonesMoveTo", "actionZonesSplit", "actionTerritoriesJoin"};
    int zones = 0;
    const QVector<TerritoryType*> types = Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            zones += territory->Zones().size();
        }
    }
    if (m_random.Below(3) == 0) {
        Trigger("actionSelectAllZones");
    }
    // They would be more and more.
    constexpr int manyZones = 60;
    const bool mayGrow = zones < manyZones && m_random.Below(3) == 0;
    Trigger(mayGrow ? growing[m_random.Below(int(std::size(growing)))]
                    : others[m_random.Below(int(std::size(others)))]);
}

void RandomUser::AnswerZoneAction(QWidget& dialog)
{
    const QList<QAbstractSpinBox*> boxes = dialog.findChildren<QAbstractSpinBox*>();
    for (QAbstractSpinBox* box : boxes) {
        if (box->isEnabled() && m_random.Below(2) == 0) {
            box->selectAll();
            QTest::keyClicks(box, QString::number(m_random.Between(-20, 120)));
        }
    }
    if (auto* count = dialog.findChild<QAbstractSpinBox*>(QStringLiteral("spnScatterCount"))) {
        count->setProperty("value", m_random.Between(1, 9));
    }
    if (auto* target = dialog.findChild<QComboBox*>(QStringLiteral("cboZonesTo"));
        target && m_random.Below(3) == 0) {
        target->setEditText(QStringLiteral("o"));
    }
    const QList<QComboBox*> combos = dialog.findChildren<QComboBox*>();
    for (QComboBox* combo : combos) {
        if (combo->count() > 0 && m_random.Below(3) != 0) {
            combo->setCurrentIndex(m_random.Below(combo->count()));
        }
    }
    const QList<QListWidget*> lists = dialog.findChildren<QListWidget*>();
    for (const QListWidget* list : lists) {
        if (list->count() > 0 && m_random.Below(2) == 0) {
            list->item(m_random.Below(list->count()))->setCheckState(Qt::Checked);
        }
    }
    if (m_random.Below(4) == 0) {
        PressAnyButton(dialog);
    } else {
        QTest::keyClick(&dialog, Qt::Key_Return);
    }
    // Where the zones fit nowhere it stays open.
    constexpr int patienceMilliseconds = 100;
    if (!QTest::qWaitFor([&dialog] { return !dialog.isVisible(); }, patienceMilliseconds)) {
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }
}

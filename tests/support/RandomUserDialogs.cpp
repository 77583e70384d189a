#include "tests/support/RandomUser.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QMap>
#include <QSpinBox>
#include <QTest>

void RandomUser::Answer(QWidget& dialog)
{
    if (m_random.Below(6) == 0 && dialog.objectName() != QLatin1String("DialogCustomLayer")) {
        QTest::keyClick(&dialog, Qt::Key_Escape);
    } else if (dialog.inherits("QFileDialog")) {
        AnswerFileDialog(dialog);
    } else if (dialog.objectName() == QLatin1String("DialogNewProject")) {
        AnswerNewProject(dialog);
    } else if (dialog.objectName() == QLatin1String("DialogCustomLayer")) {
        AnswerCustomLayer(dialog);
    } else if (dialog.objectName() == QLatin1String("DialogGrowLayer") ||
               dialog.objectName() == QLatin1String("DialogMergeLayer")) {
        AnswerLayerAction(dialog);
    } else if (QStringList{QStringLiteral("DialogMoveZones"), QStringLiteral("DialogAlignZones"),
                           QStringLiteral("DialogZonesTo"), QStringLiteral("DialogScatter"),
                           QStringLiteral("DialogJoinTerritories")}
                   .contains(dialog.objectName())) {
        AnswerZoneAction(dialog);
    } else {
        PressAnyButton(dialog);
    }
}

void RandomUser::AnswerFileDialog(QWidget& dialog)
{
    static const QMap<QString, QStringList> files{
        {QStringLiteral("Load"),
         {QStringLiteral("first/first.xml"), QStringLiteral("first/first.xml"),
          QStringLiteral("second/second.xml"), QStringLiteral("second/second.xml"),
          QStringLiteral("first/cut.xml"), QStringLiteral("first/small.xml"),
          QStringLiteral("first/empty.xml"), QStringLiteral("saved/saved.xml")}},
        {QStringLiteral("Save"),
         {QStringLiteral("saved/saved.xml"), QStringLiteral("other"),
          QStringLiteral("nowhere/a.xml")}},
        {QStringLiteral("Load background image"),
         {QStringLiteral("world.png"), QStringLiteral("text.png")}},
        {QStringLiteral("Import area flag types"),
         {QStringLiteral("areas.xml"), QStringLiteral("areas.xml"),
          QStringLiteral("cut-areas.xml")}},
        {QStringLiteral("Import area map"),
         {QStringLiteral("saved/map/saved.map"), QStringLiteral("junk.map")}},
    };
    const QStringList choice = files[dialog.windowTitle()];
    const QString path = Path(choice[m_random.Below(choice.size())]);
    // The file dialog opens a message box for a file that cannot be opened.
    dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
    QTest::keyClick(&dialog, Qt::Key_Return);
    if (dialog.isVisible()) {
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }
}

void RandomUser::AnswerNewProject(QWidget& dialog)
{
    const auto line = [&dialog](const char* name) {
        return dialog.findChild<QLineEdit*>(QLatin1String(name));
    };
    dialog.findChild<QSpinBox*>(QStringLiteral("spinLayerSizeX"))->setValue(m_random.Below(120));
    dialog.findChild<QSpinBox*>(QStringLiteral("spinWorldSizeX"))
        ->setValue(1 << m_random.Below(15));
    line("txtProjectName")
        ->setText(Path(m_random.Below(4) == 0 ? QStringLiteral("nowhere/a.xml")
                                              : QStringLiteral("saved/saved.xml")));
    line("txtWorldImage")
        ->setText(m_random.Below(2) == 0 ? Path(QStringLiteral("world.png")) : QString());
    line("txtAreaFlagsFile")
        ->setText(m_random.Below(2) == 0 ? Path(QStringLiteral("areas.xml")) : QString());
    QTest::mouseClick(dialog.findChild<QAbstractButton*>(QStringLiteral("btnOk")), Qt::LeftButton);
    if (dialog.isVisible()) {
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }
}

void RandomUser::AnswerCustomLayer(QWidget& dialog)
{
    const auto child = [&dialog](const char* name) {
        return dialog.findChild<QWidget*>(QLatin1String(name));
    };
    // Controls are disabled during a computation. Each answer performs one action, and the last one
    // closes the dialog.
    if (++m_customLayerAnswers < 6) {
        static const char* const names[] = {"cboOperation", "cboInputA", "cboInputB"};
        auto* box = qobject_cast<QComboBox*>(child(names[m_random.Below(3)]));
        if (box->isEnabled() && box->count() > 0) {
            box->setCurrentIndex(m_random.Below(box->count()));
        }
        if (auto* radius = qobject_cast<QSpinBox*>(child("spnRadius")); radius->isEnabled()) {
            radius->setValue(m_random.Between(radius->minimum(), radius->maximum()));
        }
        return;
    }
    if (!child("btnCancel")->isEnabled()) {
        return;
    }
    m_customLayerAnswers = 0;
    qobject_cast<QLineEdit*>(child("txtOutputName"))
        ->setText(QStringLiteral("custom %1").arg(m_random.Below(8)));
    const char* const name = m_random.Below(2) == 0 ? "btnOk" : "btnCancel";
    QTest::mouseClick(child(name), Qt::LeftButton);
}

void RandomUser::AnswerLayerAction(QWidget& dialog)
{
    if (auto* radius = dialog.findChild<QSpinBox*>(QStringLiteral("spnRadius"))) {
        radius->setValue(m_random.Between(radius->minimum(), radius->maximum() / 8));
    } else if (auto* target = dialog.findChild<QComboBox*>(QStringLiteral("cboMergeInto"))) {
        target->setCurrentIndex(m_random.Below(target->count()));
    }
    PressAnyButton(dialog);
}

void RandomUser::PressAnyButton(QWidget& dialog)
{
    const QList<QAbstractButton*> buttons = dialog.findChildren<QAbstractButton*>();
    QVector<QAbstractButton*> clickable;
    for (QAbstractButton* button : buttons) {
        if (button->isVisible() && button->isEnabled()) {
            clickable.append(button);
        }
    }
    if (clickable.isEmpty() || dialog.inherits("QColorDialog")) {
        QTest::keyClick(&dialog, m_random.Below(2) == 0 ? Qt::Key_Return : Qt::Key_Escape);
        return;
    }
    clickable[m_random.Below(clickable.size())]->click();
}

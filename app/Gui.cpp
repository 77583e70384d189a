#include "app/Gui.h"

#include <QApplication>
#include <QWidget>

bool IsGuiRunning()
{
    return !QApplication::topLevelWidgets().isEmpty();
}

void KeepEveryMouseMove()
{
    QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, false);
}

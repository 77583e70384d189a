#include "ExampleProject.h"

#include "app/Log.h"

#include <QApplication>
#include <QWidget>

/// make_example FOLDER: makes the example project there.
int main(int argc, char* argv[])
{
    // Layers need widgets, but no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        LogError(QStringLiteral("Usage: make_example FOLDER"));
        return 1;
    }
    // Layers have colours only while there is a top-level widget.
    const QWidget window;
    const QString error = generator::WriteExample(arguments.at(1));
    if (!error.isEmpty()) {
        LogError(error);
        return 1;
    }
    LogSuccess(QStringLiteral("Made the example project in '%1'.").arg(arguments.at(1)));
    return 0;
}

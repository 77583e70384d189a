#include "ui/WindowState.h"

#include "tests/support/ProjectFixture.h"

#include <QDir>
#include <QDockWidget>
#include <QMainWindow>
#include <QScreen>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// A window with a dock, like the editor's.
class Window : public QMainWindow
{
public:
    Window()
    {
        dock->setObjectName("dock");
        addDockWidget(Qt::LeftDockWidgetArea, dock);
        resize(640, 480);
    }

    QDockWidget* dock = new QDockWidget(this);
};

QSettings* Stored(QObject* parent)
{
    auto* settings = new QSettings("Halvern Works", "Tarvo Tools", parent);
    settings->beginGroup("Brantle");
    return settings;
}

} // namespace

class tst_WindowState : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void ComesBackAsItWas();
    void StoresThreeValues();
    void TakesTheWorkingDirectoryWithoutAFolder();
    void PassesOverForeignBytes();
    void ComesBackOnScreen();

private:
    ProjectFixture m_project;
    QTemporaryDir m_folder;
};

void tst_WindowState::init()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_folder.path());
    QObject scope;
    Stored(&scope)->remove("");
    ProjectSettings::Instance().SetDir(QDir(m_folder.path()));
}

void tst_WindowState::ComesBackAsItWas()
{
    {
        Window window;
        window.setGeometry(20, 30, 500, 400);
        window.addDockWidget(Qt::RightDockWidgetArea, window.dock);
        window.dock->hide();
        WindowState::Store(window);
    }
    ProjectSettings::Instance().SetDir(QDir("/"));
    Window window;

    WindowState::Restore(window);

    QCOMPARE(window.geometry(), QRect(20, 30, 500, 400));
    QCOMPARE(window.dockWidgetArea(window.dock), Qt::RightDockWidgetArea);
    QVERIFY(window.dock->isHidden());
    QCOMPARE(ProjectSettings::Instance().Dir().path(), m_folder.path());
}

void tst_WindowState::StoresThreeValues()
{
    Window window;
    WindowState::Store(window);

    QObject scope;
    const QSettings* settings = Stored(&scope);
    QCOMPARE(settings->childKeys(), (QStringList{"geometry", "path", "windowState"}));
    QCOMPARE(settings->value("geometry").toByteArray(), window.saveGeometry());
    QCOMPARE(settings->value("windowState").toByteArray(), window.saveState(0));
    QCOMPARE(settings->value("path").toString(), m_folder.path());
}

void tst_WindowState::TakesTheWorkingDirectoryWithoutAFolder()
{
    Window window;

    WindowState::Restore(window);

    QCOMPARE(ProjectSettings::Instance().Dir().path(), QDir::currentPath());
    QCOMPARE(window.size(), QSize(640, 480));
}

void tst_WindowState::PassesOverForeignBytes()
{
    QObject scope;
    Stored(&scope)->setValue("geometry", QByteArray("no geometry"));
    Stored(&scope)->setValue("windowState", QByteArray("\x00\x00\x00\xff no state", 13));
    Window window;

    WindowState::Restore(window);

    QCOMPARE(window.size(), QSize(640, 480));
    QCOMPARE(window.dockWidgetArea(window.dock), Qt::LeftDockWidgetArea);
    QVERIFY(!window.dock->isHidden());
}

void tst_WindowState::ComesBackOnScreen()
{
    {
        Window window;
        window.setGeometry(50000, 50000, 500, 400);
        WindowState::Store(window);
    }
    Window window;
    window.show();

    WindowState::Restore(window);

    QVERIFY(window.screen()->availableGeometry().intersects(window.geometry()));
}

QTEST_MAIN(tst_WindowState)
#include "tst_WindowState.moc"

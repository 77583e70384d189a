#include "app/Log.h"

#include "tests/support/Program.h"

#include <QCoreApplication>
#include <QTest>
#include <QThread>
#include <QTime>

#include <memory>
#include <utility>

Q_DECLARE_METATYPE(QtMsgType)

namespace {

/// Collects the console output while it exists.
class ConsoleSpy
{
public:
    using Line = std::pair<QtMsgType, QString>;

    ConsoleSpy()
    {
        Lines().clear();
        m_previous = qInstallMessageHandler(
            [](QtMsgType type, const QMessageLogContext&, const QString& line) {
                Lines().append({type, line});
            });
    }
    ~ConsoleSpy() { qInstallMessageHandler(m_previous); }
    Q_DISABLE_COPY(ConsoleSpy)

    static QVector<Line>& Lines()
    {
        static QVector<Line> lines;
        return lines;
    }

private:
    QtMessageHandler m_previous;
};

} // namespace

class tst_Log : public QObject
{
    Q_OBJECT

private slots:
    void ThereIsOneLog();
    void TypesAreNumbered();
    void MessagesReachConsoleAndSignal_data();
    void MessagesReachConsoleAndSignal();
    void TimeIsTheTimeOfDay();
    void ContentIsTakenAsItIs_data();
    void ContentIsTakenAsItIs();
    void EachMessageIsOneConsoleLine_data();
    void EachMessageIsOneConsoleLine();
    void HelpersLogTheirTypeAndProcessEvents_data();
    void HelpersLogTheirTypeAndProcessEvents();
    void LoggingAloneProcessesNoEvents();
    void MessagesOfOtherThreadsAreQueued();
};

void tst_Log::ThereIsOneLog()
{
    QCOMPARE(&Log::Instance(), &Log::Instance());
}

void tst_Log::TypesAreNumbered()
{
    QCOMPARE(int(Log::Info), 0);
    QCOMPARE(int(Log::Success), 1);
    QCOMPARE(int(Log::Error), 2);
}

void tst_Log::MessagesReachConsoleAndSignal_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QtMsgType>("channel");
    QTest::newRow("info") << int(Log::Info) << QtDebugMsg;
    QTest::newRow("success") << int(Log::Success) << QtDebugMsg;
    QTest::newRow("error") << int(Log::Error) << QtCriticalMsg;
    QTest::newRow("above the types") << 3 << QtDebugMsg;
    QTest::newRow("below the types") << -1 << QtDebugMsg;
}

void tst_Log::MessagesReachConsoleAndSignal()
{
    QFETCH(int, type);
    QFETCH(QtMsgType, channel);
    QStringList received;
    QVector<int> receivedTypes;
    QObject context;
    connect(&Log::Instance(), &Log::MessageReceived, &context,
            [&](const QString& line, Log::MessageType receivedType) {
                received.append(line);
                receivedTypes.append(receivedType);
            });
    {
        const ConsoleSpy console;
        Log::Instance().LogMessage("Saving project 'a'...", static_cast<Log::MessageType>(type));
    }
    QCOMPARE(ConsoleSpy::Lines().size(), 1);
    QCOMPARE(ConsoleSpy::Lines().first().first, channel);
    QCOMPARE(WithoutTimes({ConsoleSpy::Lines().first().second}),
             QStringList{"Saving project 'a'..."});
    QCOMPARE(received, QStringList{ConsoleSpy::Lines().first().second});
    QCOMPARE(receivedTypes, QVector<int>{type});
}

void tst_Log::TimeIsTheTimeOfDay()
{
    const ConsoleSpy console;
    const auto now = [] { return QTime::currentTime().toString("HH:mm:ss"); };
    // The clock may reach the next second between the two.
    QString before;
    do {
        ConsoleSpy::Lines().clear();
        before = now();
        Log::Instance().LogMessage("content", Log::Info);
    } while (before != now());
    QCOMPARE(ConsoleSpy::Lines().first().second, before + " - content");
}

void tst_Log::ContentIsTakenAsItIs_data()
{
    QTest::addColumn<QString>("content");
    QTest::newRow("empty") << "";
    QTest::newRow("format characters") << "%s %1 %n 100%";
    QTest::newRow("beyond ASCII") << "Gebiet 'Süd 鹿' 🦌";
}

void tst_Log::ContentIsTakenAsItIs()
{
    QFETCH(QString, content);
    const ConsoleSpy console;
    Log::Instance().LogMessage(content, Log::Error);
    QCOMPARE(WithoutTimes({ConsoleSpy::Lines().first().second}), QStringList{content});
}

void tst_Log::EachMessageIsOneConsoleLine_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QString>("console");
    QTest::newRow("line break") << "one\n12:00:00 - two"
                                << "one 12:00:00 - two";
    QTest::newRow("carriage return") << "one\r\ntwo"
                                     << "one  two";
    QTest::newRow("escape sequence") << "\033[2Jone"
                                     << " [2Jone";
    QTest::newRow("null") << QString("one").append(QChar(0)).append("two") << "one two";
    QTest::newRow("delete and upper controls")
        << QString("a%1b%2c").arg(QChar(0x7F), QChar(0x85)) << "a b c";
    QTest::newRow("separators") << QString("a%1b%2c").arg(QChar(0x2028), QChar(0x2029)) << "a b c";
}

void tst_Log::EachMessageIsOneConsoleLine()
{
    QFETCH(QString, content);
    QFETCH(QString, console);
    QStringList received;
    QObject context;
    connect(&Log::Instance(), &Log::MessageReceived, &context,
            [&](const QString& line, Log::MessageType) { received.append(line); });
    const ConsoleSpy spy;
    Log::Instance().LogMessage(content, Log::Error);
    QCOMPARE(WithoutTimes({ConsoleSpy::Lines().first().second}), QStringList{console});
    // The signal carries the message as it was logged.
    QCOMPARE(WithoutTimes(received), QStringList{content});
}

void tst_Log::HelpersLogTheirTypeAndProcessEvents_data()
{
    using Helper = void (*)(const QString&);
    QTest::addColumn<Helper>("log");
    QTest::addColumn<int>("type");
    QTest::newRow("info") << Helper(LogInfo) << int(Log::Info);
    QTest::newRow("success") << Helper(LogSuccess) << int(Log::Success);
    QTest::newRow("error") << Helper(LogError) << int(Log::Error);
}

using LogHelper = void (*)(const QString&);
Q_DECLARE_METATYPE(LogHelper)

void tst_Log::HelpersLogTheirTypeAndProcessEvents()
{
    QFETCH(LogHelper, log);
    QFETCH(int, type);
    QVector<int> types;
    bool areEventsProcessed = false;
    QObject context;
    connect(&Log::Instance(), &Log::MessageReceived, &context,
            [&](const QString&, Log::MessageType receivedType) {
                QVERIFY(!areEventsProcessed);
                types.append(receivedType);
            });
    QMetaObject::invokeMethod(
        &context, [&] { areEventsProcessed = true; }, Qt::QueuedConnection);
    const ConsoleSpy console;
    log("content");
    QCOMPARE(types, QVector<int>{type});
    QVERIFY(areEventsProcessed);
}

void tst_Log::LoggingAloneProcessesNoEvents()
{
    bool areEventsProcessed = false;
    QObject context;
    QMetaObject::invokeMethod(
        &context, [&] { areEventsProcessed = true; }, Qt::QueuedConnection);
    const ConsoleSpy console;
    Log::Instance().LogMessage("content", Log::Info);
    QVERIFY(!areEventsProcessed);
}

void tst_Log::MessagesOfOtherThreadsAreQueued()
{
    qRegisterMetaType<Log::MessageType>();
    QStringList received;
    QObject context;
    connect(&Log::Instance(), &Log::MessageReceived, &context,
            [&](const QString& line, Log::MessageType) {
                QCOMPARE(QThread::currentThread(), QCoreApplication::instance()->thread());
                received.append(line);
            });
    const ConsoleSpy console;
    const std::unique_ptr<QThread> thread(QThread::create([] { LogError("from the worker"); }));
    thread->start();
    QVERIFY(thread->wait());
    QVERIFY(received.isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(received.size(), 1);
    QCOMPARE(WithoutTimes(received), QStringList{"from the worker"});
}

QTEST_GUILESS_MAIN(tst_Log)
#include "tst_Log.moc"

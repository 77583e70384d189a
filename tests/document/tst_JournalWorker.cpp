#include "document/journal/JournalWorker.h"

#include <QTest>

#include <future>
#include <vector>

class tst_JournalWorker : public QObject
{
    Q_OBJECT

private slots:
    void DoesIdleJobsLast();
    void HasRoomUpToALimit();
    void DropsWhatHasNotBegun();
    void EndsWhenAllJobsAreDone();
};

namespace {

/// A job that takes until Release, and tells when it has begun.
class Gate
{
public:
    JournalWorker::Job Job()
    {
        return [this](JournalWriter&) {
            m_begun.set_value();
            m_released.get_future().wait();
        };
    }
    void WaitForBegin() { m_begun.get_future().wait(); }
    void Release() { m_released.set_value(); }

private:
    std::promise<void> m_begun;
    std::promise<void> m_released;
};

} // namespace

void tst_JournalWorker::DoesIdleJobsLast()
{
    std::vector<int> order;
    const auto note = [&order](int number) {
        return [&order, number](JournalWriter&) { order.push_back(number); };
    };
    Gate gate;
    JournalWorker worker;
    worker.Post(gate.Job());
    worker.PostIdle(note(3));
    worker.Post(note(1));
    worker.PostIdle(note(4));
    worker.Post(note(2));
    gate.Release();
    worker.Wait();
    QCOMPARE(order, (std::vector<int>{1, 2, 3, 4}));
}

void tst_JournalWorker::HasRoomUpToALimit()
{
    constexpr qint64 half = qint64(32) << 20;
    Gate gate;
    JournalWorker worker;
    QVERIFY(worker.HasRoom());
    worker.Post(gate.Job(), half);
    worker.Post([](JournalWriter&) {}, half - 1);
    QVERIFY(worker.HasRoom());
    worker.Post([](JournalWriter&) {}, 1);
    QVERIFY(!worker.HasRoom());
    gate.Release();
    worker.WaitForRoom();
    QVERIFY(worker.HasRoom());
    worker.Wait();
}

void tst_JournalWorker::DropsWhatHasNotBegun()
{
    bool isDone = false;
    Gate gate;
    JournalWorker worker;
    worker.Post(gate.Job());
    gate.WaitForBegin();
    const auto job = [&isDone](JournalWriter&) { isDone = true; };
    worker.Post(job, qint64(1) << 30);
    worker.PostIdle(job);
    worker.Drop();
    QVERIFY(worker.HasRoom());
    gate.Release();
    worker.Wait();
    QVERIFY(!isDone);
}

void tst_JournalWorker::EndsWhenAllJobsAreDone()
{
    int count = 0;
    {
        JournalWorker worker;
        for (int i = 0; i < 100; ++i) {
            worker.Post([&count](JournalWriter&) { ++count; });
            worker.PostIdle([&count](JournalWriter&) { ++count; });
        }
    }
    QCOMPARE(count, 200);
}

QTEST_APPLESS_MAIN(tst_JournalWorker)
#include "tst_JournalWorker.moc"

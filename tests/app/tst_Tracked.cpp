#include "app/Tracked.h"

#include <QTest>

#include <memory>
#include <vector>

namespace {

class Object
{
public:
    explicit Object(int number = 0)
        : value(number)
    {
    }
    virtual ~Object() = default;

    const Lifetime& GetLifetime() const { return m_lifetime; }

    int value;

private:
    Lifetime m_lifetime;
};

class Derived : public Object
{
public:
    using Object::Object;
};

} // namespace

class tst_Tracked : public QObject
{
    Q_OBJECT

private slots:
    void IsNullWithoutAnObject();
    void PointsToItsObject();
    void BecomesNullWithTheObject();
    void CopiesForgetTheObjectToo();
    void CanPointToAnotherObject();
    void DoesNotTakeANewObjectAtTheSamePlaceForTheOldOne();
    void OutlivesItsObjectInContainers();
    void TracksThroughABaseClass();
    void DoesNotOwn();
};

void tst_Tracked::IsNullWithoutAnObject()
{
    const Tracked<Object> nothing;
    QVERIFY(!nothing);
    QCOMPARE(nothing.Get(), nullptr);
    const Tracked<Object> null(nullptr);
    QVERIFY(!null);
}

void tst_Tracked::PointsToItsObject()
{
    Object object(7);
    const Tracked<Object> tracked(&object);
    QCOMPARE(tracked.Get(), &object);
    QCOMPARE(static_cast<Object*>(tracked), &object);
    QCOMPARE(tracked->value, 7);
    QVERIFY(tracked);
}

void tst_Tracked::BecomesNullWithTheObject()
{
    auto object = std::make_unique<Object>();
    const Tracked<Object> tracked(object.get());
    object.reset();
    QCOMPARE(tracked.Get(), nullptr);
    QVERIFY(!tracked);
}

void tst_Tracked::CopiesForgetTheObjectToo()
{
    auto object = std::make_unique<Object>();
    const Tracked<Object> tracked(object.get());
    const Tracked<Object> copy = tracked;
    Tracked<Object> assigned;
    assigned = tracked;
    QCOMPARE(copy.Get(), object.get());
    QCOMPARE(assigned.Get(), object.get());
    object.reset();
    QVERIFY(!copy);
    QVERIFY(!assigned);
    const Tracked<Object> late = tracked;
    QVERIFY(!late);
}

void tst_Tracked::CanPointToAnotherObject()
{
    auto first = std::make_unique<Object>(1);
    Object second(2);
    Tracked<Object> tracked(first.get());
    tracked = &second;
    first.reset();
    QCOMPARE(tracked.Get(), &second);
    tracked = nullptr;
    QVERIFY(!tracked);
}

void tst_Tracked::DoesNotTakeANewObjectAtTheSamePlaceForTheOldOne()
{
    alignas(Object) char memory[sizeof(Object)];
    auto* first = new (memory) Object(1);
    const Tracked<Object> tracked(first);
    first->~Object();
    auto* second = new (memory) Object(2);
    QVERIFY(!tracked);
    QCOMPARE(Tracked<Object>(second).Get(), second);
    second->~Object();
}

void tst_Tracked::OutlivesItsObjectInContainers()
{
    std::vector<Tracked<Object>> all;
    for (int i = 0; i < 100; ++i) {
        const Object object(i);
        all.emplace_back(const_cast<Object*>(&object));
        QCOMPARE(all.back()->value, i);
    }
    for (const Tracked<Object>& tracked : all) {
        QVERIFY(!tracked);
    }
}

void tst_Tracked::TracksThroughABaseClass()
{
    auto object = std::make_unique<Derived>(3);
    const Tracked<Object> base(object.get());
    const Tracked<Derived> derived(object.get());
    QCOMPARE(base->value, 3);
    object.reset();
    QVERIFY(!base);
    QVERIFY(!derived);
}

void tst_Tracked::DoesNotOwn()
{
    Object object;
    {
        const Tracked<Object> tracked(&object);
    }
    QCOMPARE(object.value, 0);
}

QTEST_GUILESS_MAIN(tst_Tracked)
#include "tst_Tracked.moc"

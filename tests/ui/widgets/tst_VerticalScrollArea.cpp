#include "ui/widgets/VerticalScrollArea.h"

#include <QLabel>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>

namespace {

/// A form of twenty lines in a shown area.
class Fixture
{
public:
    Fixture()
    {
        auto* form = new QWidget;
        auto* layout = new QVBoxLayout(form);
        for (int i = 0; i < 20; ++i) {
            layout->addWidget(new QLabel(QStringLiteral("line")));
        }
        first = qobject_cast<QLabel*>(layout->itemAt(0)->widget());
        area.setWidget(form);
        area.show();
        QCoreApplication::processEvents();
    }

    int Missing() const
    {
        return area.widget()->minimumSizeHint().width() - area.viewport()->width();
    }

    VerticalScrollArea area;
    QLabel* first;
};

} // namespace

class tst_VerticalScrollArea : public QObject
{
    Q_OBJECT

private slots:
    void ShowsAllOfItsFormAtItsNaturalSize();
    void ScrollsUpAndDownOnly();
    void GrowsWithItsForm();
    void StandsHavingNoForm();
};

void tst_VerticalScrollArea::ShowsAllOfItsFormAtItsNaturalSize()
{
    Fixture fixture;

    fixture.area.resize(fixture.area.sizeHint());
    QCoreApplication::processEvents();

    QVERIFY(!fixture.area.verticalScrollBar()->isVisible());
    QVERIFY(fixture.Missing() <= 0);
}

void tst_VerticalScrollArea::ScrollsUpAndDownOnly()
{
    Fixture fixture;

    fixture.area.resize(fixture.area.minimumSizeHint());
    QCoreApplication::processEvents();

    QVERIFY(fixture.area.height() < fixture.area.widget()->height());
    QVERIFY(fixture.area.verticalScrollBar()->isVisible());
    QVERIFY(!fixture.area.horizontalScrollBar()->isVisible());
    QVERIFY(fixture.Missing() <= 0);
}

void tst_VerticalScrollArea::GrowsWithItsForm()
{
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    Fixture fixture;
    layout->addWidget(&fixture.area);
    window.resize(50, 100);
    window.show();
    QCoreApplication::processEvents();
    const int before = fixture.area.width();

    fixture.first->setText(QString(100, QLatin1Char('m')));

    QTRY_VERIFY(fixture.area.width() > before);
    QVERIFY(fixture.Missing() <= 0);
    fixture.area.setParent(nullptr);
}

void tst_VerticalScrollArea::StandsHavingNoForm()
{
    const VerticalScrollArea area;

    QVERIFY(area.sizeHint().isValid());
    QVERIFY(area.minimumSizeHint().isValid());
}

QTEST_MAIN(tst_VerticalScrollArea)
#include "tst_VerticalScrollArea.moc"

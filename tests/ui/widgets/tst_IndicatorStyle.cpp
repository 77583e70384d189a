#include "ui/widgets/IndicatorStyle.h"

#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QRadioButton>
#include <QStandardItemModel>
#include <QStyleFactory>
#include <QTest>
#include <QTreeView>

#include <cmath>
#include <memory>

namespace {

QPalette Dark()
{
    QPalette palette(QColor(53, 53, 53));
    palette.setColor(QPalette::Base, QColor(35, 35, 35));
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText}) {
        palette.setColor(role, Qt::white);
    }
    return palette;
}

QPalette Light()
{
    const std::unique_ptr<QStyle> fusion(QStyleFactory::create(QStringLiteral("fusion")));
    return fusion->standardPalette();
}

/// As the WCAG measures it, from 0 to 1.
double Luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double Contrast(const QColor& a, const QColor& b)
{
    const double first = Luminance(a) + 0.05;
    const double second = Luminance(b) + 0.05;
    return first > second ? first / second : second / first;
}

/// The strongest contrast to the ground within the place.
double StrongestContrast(const QImage& picture, const QRect& place, const QColor& ground)
{
    double strongest = 1;
    for (int y = place.top(); y <= place.bottom(); ++y) {
        for (int x = place.left(); x <= place.right(); ++x) {
            strongest = qMax(strongest, Contrast(picture.pixelColor(x, y), ground));
        }
    }
    return strongest;
}

std::unique_ptr<QWidget> MakeBox(const QString& kind)
{
    if (kind == QLatin1String("check box")) {
        return std::make_unique<QCheckBox>();
    }
    if (kind == QLatin1String("radio button")) {
        return std::make_unique<QRadioButton>();
    }
    if (kind == QLatin1String("group box")) {
        auto box = std::make_unique<QGroupBox>();
        box->setCheckable(true);
        box->setChecked(false);
        return box;
    }
    auto tree = std::make_unique<QTreeView>();
    auto* model = new QStandardItemModel(tree.get());
    auto* item = new QStandardItem;
    item->setCheckable(true);
    model->appendRow(item);
    tree->setHeaderHidden(true);
    tree->setRootIsDecorated(false);
    tree->setFrameShape(QFrame::NoFrame);
    tree->setModel(model);
    return tree;
}

} // namespace

class tst_IndicatorStyle : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void BoxesWithoutAMarkAreSeenInDarkPalettes_data();
    void BoxesWithoutAMarkAreSeenInDarkPalettes();
    void LightPalettesLookAsBefore();
    void OtherStylesStay();
};

void tst_IndicatorStyle::init()
{
    QApplication::setStyle(QStringLiteral("fusion"));
    ShowIndicatorsInDarkPalettes();
}

void tst_IndicatorStyle::BoxesWithoutAMarkAreSeenInDarkPalettes_data()
{
    QTest::addColumn<QPalette::ColorRole>("ground");

    QTest::newRow("check box") << QPalette::Window;
    QTest::newRow("radio button") << QPalette::Window;
    QTest::newRow("group box") << QPalette::Window;
    QTest::newRow("tree") << QPalette::Base;
}

void tst_IndicatorStyle::BoxesWithoutAMarkAreSeenInDarkPalettes()
{
    QFETCH(QPalette::ColorRole, ground);
    // What graphics and controls need to be told apart from what is around them.
    constexpr double enough = 3;
    constexpr QRect indicator(0, 0, 16, 16);
    const std::unique_ptr<QWidget> box = MakeBox(QTest::currentDataTag());
    box->setPalette(Dark());
    box->resize(60, 40);

    const double contrast =
        StrongestContrast(box->grab().toImage(), indicator, Dark().color(ground));

    QVERIFY2(contrast >= enough, qPrintable(QString::number(contrast)));
}

void tst_IndicatorStyle::LightPalettesLookAsBefore()
{
    const auto picture = [] {
        QCheckBox box;
        box.setPalette(Light());
        return box.grab().toImage();
    };
    const QImage with = picture();
    QApplication::setStyle(QStringLiteral("fusion"));

    QCOMPARE(with, picture());
}

void tst_IndicatorStyle::OtherStylesStay()
{
    QApplication::setStyle(QStringLiteral("windows"));
    const QStyle* style = QApplication::style();

    ShowIndicatorsInDarkPalettes();

    QCOMPARE(QApplication::style(), style);
}

QTEST_MAIN(tst_IndicatorStyle)
#include "tst_IndicatorStyle.moc"

#include "layers/Layer.h"

#include "layers/LayerList.h"
#include "layers/Targa.h"
#include "layers/raster/Mask.h"

#include "tests/support/Files.h"
#include "tests/support/LiteralTarga.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/ProjectFixture.h"

#include <QStandardItemModel>
#include <QXmlStreamWriter>
#include <QtTest>

class tst_Layer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void IdsAreNeverReused();
    void ANewLayerIsWhiteHiddenAndPainted();
    void ConstructorsTakeNameAndCode();
    void ABatchRunGivesNoDefaultName();
    void AWindowGivesADefaultName();
    void ABatchRunSetsNoRoles();
    void AWindowSetsRolesAndFlags();
    void TheTypeIsThePlainItems();

    void AMaskIsTakenAsItIs_data();
    void AMaskIsTakenAsItIs();
    void OfAPictureThePixelsOfTheColourAreTaken();
    void APictureOfAnotherDepthGivesNoImage();
    void TheImagesColourIsTakenOnlyWhileAWindowLives_data();
    void TheImagesColourIsTakenOnlyWhileAWindowLives();
    void ANewColourKeepsTheOpacity_data();
    void ANewColourKeepsTheOpacity();
    void ANewOpacityKeepsTheColour_data();
    void ANewOpacityKeepsTheColour();
    void VisibilityIsTheCheckState();
    void FlagsAreKept();
    void ThePictureShowsTheMaskInTheOpaqueColour();
    void ABatchRunHasNoPicture();

    void PaintedPixelsOfTheColourBecomeTheMask();
    void PaintingOnALayerWithoutAListDoesNothing();
    void ANullPaintedImageIsIgnored_data();
    void ANullPaintedImageIsIgnored();

    void RenamesToValidNamesAreTaken_data();
    void RenamesToValidNamesAreTaken();
    void OtherRolesAreKept();

    void TheElementHoldsTheAttributesInOrder_data();
    void TheElementHoldsTheAttributesInOrder();
    void TheBitmapIsSavedBeforeTheElementCloses();
    void TheBitmapIsSavedRunLengthCompressedUnderTheName();
    void TheLayersFolderIsCreatedWhenMissing();
    void ABitmapThatCannotBeSavedIsStillAnElement();
    void ALayerWithoutAnImageIsNotSaved();

private:
    std::unique_ptr<ProjectFixture> m_project;
    LogSpy m_log;
};

namespace {

QString Written(const Layer& layer)
{
    QString text;
    QXmlStreamWriter xml(&text);
    layer.WriteXml(xml);
    return text;
}

void AddWindowOrNot()
{
    QTest::addColumn<bool>("isGuiRunning");
    QTest::newRow("without a window") << false;
    QTest::newRow("with a window") << true;
}

std::unique_ptr<QWidget> WindowIf(bool isGuiRunning)
{
    return isGuiRunning ? std::make_unique<QWidget>() : nullptr;
}

QColor DecorationOf(const Layer& layer)
{
    return layer.data(Qt::DecorationRole).value<QColor>();
}

} // namespace

void tst_Layer::init()
{
    m_project = std::make_unique<ProjectFixture>(QSize(5, 2));
    m_log.Take();
}

void tst_Layer::cleanup()
{
    m_project.reset();
}

void tst_Layer::IdsAreNeverReused()
{
    int last = -1;
    for (int i = 0; i < 5; ++i) {
        const Layer layer(0, 0, nullptr);
        QVERIFY(layer.Id() > last);
        last = layer.Id();
    }
    const Layer a(0, 0, nullptr);
    const Layer b(0, 0, nullptr, "b");
    const Layer c(0, 0, nullptr, "c", "code");
    QCOMPARE(a.Id(), last + 1);
    QCOMPARE(b.Id(), last + 2);
    QCOMPARE(c.Id(), last + 3);
}

void tst_Layer::ANewLayerIsWhiteHiddenAndPainted()
{
    const Layer layer(3, 0x80000000, nullptr);
    QCOMPARE(layer.UsageFlags(), 3U);
    QCOMPARE(layer.ValueFlags(), 0x80000000U);
    QCOMPARE(layer.Color().rgba(), 0xFFFFFFFFU);
    QVERIFY(!layer.IsVisible());
    QVERIFY(layer.Image().isNull());
    QCOMPARE(layer.Code(), QString());
    QVERIFY(!layer.List());
}

void tst_Layer::ConstructorsTakeNameAndCode()
{
    LayerList list;
    const Layer named(1, 2, &list, "coast");
    QCOMPARE(named.text(), QStringLiteral("coast"));
    QCOMPARE(named.Code(), QString());
    QCOMPARE(named.List(), &list);
    const Layer computed(1, 2, &list, "coast", "some code");
    QCOMPARE(computed.text(), QStringLiteral("coast"));
    QCOMPARE(computed.Code(), QStringLiteral("some code"));
    QCOMPARE(computed.UsageFlags(), 1U);
    QCOMPARE(computed.ValueFlags(), 2U);
}

void tst_Layer::ABatchRunGivesNoDefaultName()
{
    QCOMPARE(Layer(0, 0, nullptr).text(), QString());
}

void tst_Layer::AWindowGivesADefaultName()
{
    const QWidget window;
    const Layer layer(0, 0, nullptr);
    QCOMPARE(layer.text(), QStringLiteral("layer-%1").arg(layer.Id()));
    QCOMPARE(Layer(0, 0, nullptr, "").text(), QString());
}

void tst_Layer::ABatchRunSetsNoRoles()
{
    const Layer layer(0, 0, nullptr, "coast");
    QVERIFY(!layer.data(Qt::DecorationRole).isValid());
    QVERIFY(!layer.data(Qt::UserRole).isValid());
    QCOMPARE(layer.flags(), QStandardItem().flags());
}

void tst_Layer::AWindowSetsRolesAndFlags()
{
    const QWidget window;
    const Layer layer(0, 0, nullptr, "coast");
    QCOMPARE(layer.data(Qt::DisplayRole).toString(), QStringLiteral("coast"));
    QCOMPARE(layer.data(Qt::EditRole).toString(), QStringLiteral("coast"));
    QCOMPARE(DecorationOf(layer).rgba(), 0xFFFFFFFFU);
    QCOMPARE(layer.data(Qt::UserRole), QVariant(layer.Id()));
    QVERIFY(layer.isCheckable());
    QVERIFY(layer.isEditable());
    QVERIFY(layer.isDragEnabled());
    QVERIFY(!layer.isDropEnabled());
}

void tst_Layer::TheTypeIsThePlainItems()
{
    QCOMPARE(Layer(0, 0, nullptr).type(), int(QStandardItem::Type));
}

void tst_Layer::AMaskIsTakenAsItIs_data()
{
    AddWindowOrNot();
}

void tst_Layer::AMaskIsTakenAsItIs()
{
    QFETCH(bool, isGuiRunning);
    const auto window = WindowIf(isGuiRunning);
    const QImage mask = MaskFromArt({"#+.", "..#"});
    Layer layer(0, 0, nullptr);
    layer.SetImage(mask, Qt::red);
    QCOMPARE(layer.Image().cacheKey(), mask.cacheKey());
}

void tst_Layer::OfAPictureThePixelsOfTheColourAreTaken()
{
    QImage picture(3, 1, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    picture.setPixel(1, 0, 0xFFFF0000);
    picture.setPixel(2, 0, 0xFF0000FF);
    Layer layer(0, 0, nullptr);
    // The colour's opacity does not count: painted pixels are opaque.
    layer.SetImage(picture, QColor(255, 0, 0, 17));
    QCOMPARE(ArtFromMask(layer.Image()), QStringList{".#."});
    QCOMPARE(layer.Image().colorTable(), raster::GreyTable());
}

void tst_Layer::APictureOfAnotherDepthGivesNoImage()
{
    Layer layer(0, 0, nullptr);
    layer.SetImage(MaskFromArt({"#"}), Qt::red);
    layer.SetImage(QImage(5, 2, QImage::Format_RGB16), Qt::red);
    QVERIFY(layer.Image().isNull());
}

void tst_Layer::TheImagesColourIsTakenOnlyWhileAWindowLives_data()
{
    AddWindowOrNot();
}

void tst_Layer::TheImagesColourIsTakenOnlyWhileAWindowLives()
{
    QFETCH(bool, isGuiRunning);
    const auto window = WindowIf(isGuiRunning);
    const QColor colour(10, 20, 30, 40);
    Layer layer(0, 0, nullptr);
    layer.SetImage(MaskFromArt({"#"}), colour);
    QCOMPARE(layer.Color(), isGuiRunning ? colour : QColor(Qt::white));
    QCOMPARE(DecorationOf(layer), isGuiRunning ? colour : QColor());
}

void tst_Layer::ANewColourKeepsTheOpacity_data()
{
    AddWindowOrNot();
}

void tst_Layer::ANewColourKeepsTheOpacity()
{
    QFETCH(bool, isGuiRunning);
    const auto window = WindowIf(isGuiRunning);
    Layer layer(0, 0, nullptr);
    layer.SetOpacity(128);
    layer.SetColor(QColor(1, 2, 3, 4));
    QCOMPARE(layer.Color().rgba(), qRgba(1, 2, 3, 128));
    QCOMPARE(DecorationOf(layer).rgba(), qRgba(1, 2, 3, 128));
}

void tst_Layer::ANewOpacityKeepsTheColour_data()
{
    QTest::addColumn<int>("opacity");
    QTest::newRow("0") << 0;
    QTest::newRow("128") << 128;
    QTest::newRow("255") << 255;
}

void tst_Layer::ANewOpacityKeepsTheColour()
{
    QFETCH(int, opacity);
    Layer layer(0, 0, nullptr);
    layer.SetColor(QColor(1, 2, 3));
    layer.SetOpacity(opacity);
    QCOMPARE(layer.Color().rgba(), qRgba(1, 2, 3, opacity));
    QCOMPARE(DecorationOf(layer).rgba(), qRgba(1, 2, 3, opacity));
}

void tst_Layer::VisibilityIsTheCheckState()
{
    Layer layer(0, 0, nullptr);
    QCOMPARE(layer.checkState(), Qt::Unchecked);
    layer.SetVisible(true);
    QVERIFY(layer.IsVisible());
    QCOMPARE(layer.checkState(), Qt::Checked);
    layer.SetVisible(false);
    QVERIFY(!layer.IsVisible());
    QCOMPARE(layer.checkState(), Qt::Unchecked);
}

void tst_Layer::FlagsAreKept()
{
    Layer layer(1, 2, nullptr);
    layer.SetUsageFlags(0xFFFFFFFF);
    layer.SetValueFlags(0x80000001);
    QCOMPARE(layer.UsageFlags(), 0xFFFFFFFFU);
    QCOMPARE(layer.ValueFlags(), 0x80000001U);
}

void tst_Layer::ThePictureShowsTheMaskInTheOpaqueColour()
{
    const QWidget window;
    Layer layer(0, 0, nullptr);
    layer.SetImage(MaskFromArt({"#.+"}), QColor(10, 20, 30, 40));
    const QImage picture = layer.Pixmap().toImage();
    QCOMPARE(picture.size(), QSize(3, 1));
    QCOMPARE(picture.pixel(0, 0), 0xFF0A141EU);
    QCOMPARE(picture.pixel(1, 0), 0U);
    QCOMPARE(picture.pixel(2, 0), 0U);
}

void tst_Layer::ABatchRunHasNoPicture()
{
    Layer layer(0, 0, nullptr);
    layer.SetImage(MaskFromArt({"#.+"}), Qt::red);
    QVERIFY(layer.Pixmap().isNull());
}

void tst_Layer::PaintedPixelsOfTheColourBecomeTheMask()
{
    LayerList list;
    Layer layer(0, 0, &list);
    layer.SetImage(MaskFromArt({"##.."}), Qt::white);
    layer.SetColor(QColor(0, 0, 255));
    layer.SetOpacity(100);
    QImage painted(4, 1, QImage::Format_ARGB32_Premultiplied);
    painted.fill(Qt::transparent);
    painted.setPixel(1, 0, 0xFF0000FF);
    painted.setPixel(2, 0, 0xFF0000FE);
    painted.setPixel(3, 0, 0xFF0000FF);
    layer.ApplyPaintedImage(painted);
    QCOMPARE(ArtFromMask(layer.Image()), QStringList{".#.#"});
}

void tst_Layer::PaintingOnALayerWithoutAListDoesNothing()
{
    Layer layer(0, 0, nullptr);
    layer.SetImage(MaskFromArt({"##.."}), Qt::white);
    QImage painted(4, 1, QImage::Format_ARGB32_Premultiplied);
    painted.fill(Qt::white);
    layer.ApplyPaintedImage(painted);
    QCOMPARE(ArtFromMask(layer.Image()), QStringList{"##.."});
}

void tst_Layer::ANullPaintedImageIsIgnored_data()
{
    QTest::addColumn<QImage>("painted");
    QTest::newRow("null") << QImage();
    QTest::newRow("16 bits") << QImage(4, 1, QImage::Format_RGB16);
}

void tst_Layer::ANullPaintedImageIsIgnored()
{
    QFETCH(QImage, painted);
    LayerList list;
    Layer layer(0, 0, &list);
    layer.SetImage(MaskFromArt({"##.."}), Qt::white);
    layer.ApplyPaintedImage(painted);
    QCOMPARE(ArtFromMask(layer.Image()), QStringList{"##.."});
}

void tst_Layer::RenamesToValidNamesAreTaken_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("name");
    QTest::newRow("letters, digits and spaces") << "North Hills 2"
                                                << "North Hills 2";
    QTest::newRow("its own name") << "coast"
                                  << "coast";
    QTest::newRow("slash") << "co/ast"
                           << "coast";
    QTest::newRow("blanks only") << "   "
                                 << "coast";
    QTest::newRow("empty") << ""
                           << "coast";
    QTest::newRow("question mark") << "coast?"
                                   << "coast";
}

void tst_Layer::RenamesToValidNamesAreTaken()
{
    QFETCH(QString, typed);
    QFETCH(QString, name);
    int changeCount = 0;
    LayerList list;
    auto* layer = new Layer(0, 0, &list, "coast");
    layer->SetImage(MaskFromArt({"#"}), Qt::red);
    list.AddLayer(layer);
    connect(list.model(), &QStandardItemModel::itemChanged, this, [&] { ++changeCount; });
    list.model()->setData(layer->index(), typed, Qt::EditRole);
    QCOMPARE(layer->text(), name);
    QCOMPARE(changeCount, name == "coast" ? 0 : 1);
}

void tst_Layer::OtherRolesAreKept()
{
    Layer layer(0, 0, nullptr, "coast");
    layer.setData("tip", Qt::ToolTipRole);
    layer.setData(QVariant(7));
    QCOMPARE(layer.data(Qt::ToolTipRole).toString(), QStringLiteral("tip"));
    QCOMPARE(layer.data(), QVariant(7));
    QCOMPARE(layer.text(), QStringLiteral("coast"));
}

void tst_Layer::TheElementHoldsTheAttributesInOrder_data()
{
    QTest::addColumn<quint32>("usageFlags");
    QTest::addColumn<quint32>("valueFlags");
    QTest::addColumn<QColor>("color");
    QTest::addColumn<bool>("isVisible");
    QTest::addColumn<QString>("attributes");
    QTest::newRow("opaque red, visible")
        << 5U << 2U << QColor(Qt::red) << true
        << "usage_flags=\"5\" value_flags=\"2\" color=\"4294901760\" visible=\"1\"";
    QTest::newRow("transparent, hidden")
        << 0U << 0U << QColor(0, 0, 255, 0) << false
        << "usage_flags=\"0\" value_flags=\"0\" color=\"255\" visible=\"0\"";
    QTest::newRow("32nd flags")
        << 0x80000000U << 0xFFFFFFFFU << QColor(255, 255, 255, 128) << true
        << "usage_flags=\"2147483648\" value_flags=\"4294967295\" color=\"2164260863\" "
           "visible=\"1\"";
}

void tst_Layer::TheElementHoldsTheAttributesInOrder()
{
    QFETCH(quint32, usageFlags);
    QFETCH(quint32, valueFlags);
    QFETCH(QColor, color);
    QFETCH(bool, isVisible);
    QFETCH(QString, attributes);
    Layer layer(usageFlags, valueFlags, nullptr, "A & B", "the code is not written");
    layer.SetImage(MaskFromArt({"#...."}), Qt::white);
    layer.SetColor(color);
    layer.SetOpacity(color.alpha());
    layer.SetVisible(isVisible);
    QCOMPARE(Written(layer), QString("<layer %1 name=\"A &amp; B\"/>").arg(attributes));
}

void tst_Layer::TheBitmapIsSavedBeforeTheElementCloses()
{
    Layer layer(0, 0, nullptr, "coast");
    layer.SetImage(MaskFromArt({"#...."}), Qt::white);
    QString text;
    QXmlStreamWriter xml(&text);
    QString textWhenSaved;
    const auto connection =
        connect(&Log::Instance(), &Log::MessageReceived, [&] { textWhenSaved = text; });
    layer.WriteXml(xml);
    disconnect(connection);
    QVERIFY(textWhenSaved.contains("name=\"coast\""));
    QVERIFY(!textWhenSaved.contains("/>"));
    QVERIFY(text.endsWith("/>"));
}

void tst_Layer::TheBitmapIsSavedRunLengthCompressedUnderTheName()
{
    const QImage mask = MaskFromArt({"##..#", ".+..."});
    Layer layer(0, 0, nullptr, "North 100%1");
    layer.SetImage(mask, Qt::white);
    QVERIFY(layer.SaveBitmap());
    QCOMPARE(ReadBytes(m_project->Path("layers/North 100%1.tga")), literal::WriteTarga(mask, true));
    QCOMPARE(m_log.Messages(), QStringList{"Success: Layer 'North 100%1' successfully saved."});
}

void tst_Layer::TheLayersFolderIsCreatedWhenMissing()
{
    Layer layer(0, 0, nullptr, "coast");
    layer.SetImage(MaskFromArt({"#"}), Qt::white);
    QVERIFY(layer.SaveBitmap());
    QVERIFY(QDir(m_project->Path("layers")).removeRecursively());
    QVERIFY(layer.SaveBitmap());
    QVERIFY(QFile::exists(m_project->Path("layers/coast.tga")));
}

void tst_Layer::ABitmapThatCannotBeSavedIsStillAnElement()
{
    WriteBytes(m_project->Path("layers"), "a file where the folder should be");
    Layer layer(0, 0, nullptr, "coast");
    layer.SetImage(MaskFromArt({"#"}), Qt::white);
    QVERIFY(Written(layer).endsWith("name=\"coast\"/>"));
    const QString message = "Error: File %1 cannot be opened for writting.";
    QCOMPARE(m_log.Messages(), QStringList{message.arg(m_project->Path("layers/coast.tga"))});
}

void tst_Layer::ALayerWithoutAnImageIsNotSaved()
{
    const Layer layer(0, 0, nullptr, "coast");
    QVERIFY(!layer.SaveBitmap());
    QCOMPARE(m_log.Messages(), QStringList{"Error: Only 8-bit indexed image format is supported."});
}

QTEST_MAIN(tst_Layer)

#include "tst_Layer.moc"

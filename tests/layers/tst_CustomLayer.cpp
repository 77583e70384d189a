#include "layers/CustomLayer.h"

#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "layers/raster/Morphology.h"
#include "layers/raster/SetOperations.h"

#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/ProjectFixture.h"

#include <QTimer>
#include <QtTest>

#include <algorithm>
#include <array>
#include <memory>

class tst_CustomLayer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void OperationsHaveCharacters_data();
    void OperationsHaveCharacters();
    void WhatIsNoOperationIsAQuestionMark();
    void OtherCharactersAreUnknown();
    void OperandsAreSplit_data();
    void OperandsAreSplit();
    void IdsAreParsed_data();
    void IdsAreParsed();
    void ARadiusIsRead_data();
    void ARadiusIsRead();

    void SetOperationsAreEvaluated_data();
    void SetOperationsAreEvaluated();
    void MorphologyIsEvaluated_data();
    void MorphologyIsEvaluated();
    void RadiiAreConvertedInFloats_data();
    void RadiiAreConvertedInFloats();
    void AFactorThatIsNoNumberCountsAsZero();
    void AnInfiniteFactorReachesEverything();
    void HugeRadiiTakeNoMemory();
    void OperandsAreScaled();
    void OperandsComeFromTheListThatIsPassed();
    void PreviewsKeepTheRadiusInFullSizePixels();
    void SizesOfNothingGiveNull();
    void CodesThatCannotBeEvaluatedAreLogged_data();
    void CodesThatCannotBeEvaluatedAreLogged();
    void NothingIsEvaluatedOverAnEmptyList_data();
    void NothingIsEvaluatedOverAnEmptyList();
    void IdsOfNoLayerGiveNullSilently_data();
    void IdsOfNoLayerGiveNullSilently();
    void TheListMayGoWhileAMessageIsShown();

    void ACodeReplacesTheImage();
    void ACodeIsEvaluatedAtTheLayerSize_data();
    void ACodeIsEvaluatedAtTheLayerSize();
    void ACodeIsEvaluatedOverTheListOfItsLayer();
    void AnEqualCodeChangesNothing();
    void ACodeThatEvaluatesToNothingChangesNothing_data();
    void ACodeThatEvaluatesToNothingChangesNothing();
    void ALayerWithoutAListHasNoCode();
    void TheLayerMayGoWhileAMessageIsShown();

private:
    Layer* AddLayer(const QImage& mask);
    /// The code with "A" and "B" for the ids of the two layers.
    QString Code(QString text) const;
    QImage EvaluateAtLayerSize(const QString& code) const;

    std::unique_ptr<ProjectFixture> m_project;
    std::unique_ptr<LogSpy> m_log;
    std::unique_ptr<LayerList> m_layers;
    Layer* m_a = nullptr;
    Layer* m_b = nullptr;
};

namespace {

QStringList ArtA()
{
    return {"##......", "##......", "........", "...###..",
            "...###..", "...###..", "........", "........"};
}

/// Two bars with free space around them: one as high as a disc of the radius, of which opening
/// leaves the disc, and one that is a pixel lower.
QImage RunsAround(int radius)
{
    QImage mask = raster::BlankMask({2, 8 * radius + 16});
    for (int i = 0; i < 2 * radius + 1; ++i) {
        std::fill_n(mask.scanLine(radius + 4 + i), 2, raster::MaskSet);
    }
    for (int i = 0; i < 2 * radius; ++i) {
        std::fill_n(mask.scanLine(5 * radius + 10 + i), 2, raster::MaskSet);
    }
    return mask;
}

struct Morphology
{
    char character;
    QImage (*function)(const QImage& mask, float discRadius);
};

std::array<Morphology, 4> AllMorphology()
{
    return {
        {{'e', raster::Erode}, {'d', raster::Dilate}, {'o', raster::Open}, {'c', raster::Close}}};
}

QStringList ArtB()
{
    return {"#.......", "#.......", "........", "....#...",
            "........", "........", "........", ".......#"};
}

} // namespace

void tst_CustomLayer::init()
{
    // One pixel a metre.
    m_project = std::make_unique<ProjectFixture>(QSize(8, 8), QSize(8, 8));
    m_log = std::make_unique<LogSpy>();
    m_layers = std::make_unique<LayerList>();
    m_a = AddLayer(MaskFromArt(ArtA()));
    m_b = AddLayer(MaskFromArt(ArtB()));
}

void tst_CustomLayer::cleanup()
{
    m_layers.reset();
    m_log.reset();
    m_project.reset();
}

Layer* tst_CustomLayer::AddLayer(const QImage& mask)
{
    auto layer = std::make_unique<Layer>(0, 0, m_layers.get(), "area");
    layer->SetImage(mask, Qt::white);
    return m_layers->AddLayer(layer.get()) ? layer.release() : nullptr;
}

QString tst_CustomLayer::Code(QString text) const
{
    return text.replace('A', QString::number(m_a->Id())).replace('B', QString::number(m_b->Id()));
}

QImage tst_CustomLayer::EvaluateAtLayerSize(const QString& code) const
{
    return ::EvaluateAtLayerSize(*m_layers, code);
}

void tst_CustomLayer::OperationsHaveCharacters_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<char>("character");
    QTest::addColumn<bool>("isBinary");
    QTest::addColumn<bool>("isMorphological");
    QTest::newRow("complement") << 0 << '!' << false << false;
    QTest::newRow("union") << 1 << '+' << true << false;
    QTest::newRow("intersection") << 2 << '.' << true << false;
    QTest::newRow("difference") << 3 << '-' << true << false;
    QTest::newRow("erosion") << 4 << 'e' << false << true;
    QTest::newRow("dilation") << 5 << 'd' << false << true;
    QTest::newRow("opening") << 6 << 'o' << false << true;
    QTest::newRow("closing") << 7 << 'c' << false << true;
}

void tst_CustomLayer::OperationsHaveCharacters()
{
    QFETCH(int, operation);
    QFETCH(char, character);
    QTEST(IsBinaryOperation(operation), "isBinary");
    QTEST(IsMorphologicalOperation(operation), "isMorphological");
    QCOMPARE(OperationChar(operation), character);
    QCOMPARE(OperationFromChar(character), operation);
}

void tst_CustomLayer::WhatIsNoOperationIsAQuestionMark()
{
    for (const int operation : {-1, 8, 9, 1000}) {
        QCOMPARE(OperationChar(operation), '?');
        QVERIFY(!IsBinaryOperation(operation));
        QVERIFY(!IsMorphologicalOperation(operation));
    }
}

void tst_CustomLayer::OtherCharactersAreUnknown()
{
    for (const char character : {'?', 'x', 'E', ' ', '\0', '\xFF'}) {
        QCOMPARE(OperationFromChar(character), 8);
    }
}

void tst_CustomLayer::OperandsAreSplit_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QStringList>("operands");
    QTest::newRow("nothing") << "" << QStringList();
    QTest::newRow("complement") << "!(12)" << QStringList{"12"};
    QTest::newRow("difference") << "-(3)(7)" << QStringList{"3", "7"};
    QTest::newRow("morphological") << "e(5:25)" << QStringList{"5:25"};
    QTest::newRow("unknown") << "?( )" << QStringList{" "};
    QTest::newRow("a unary one of two") << "!(4)(5)" << QStringList{"4)(5"};
    QTest::newRow("nested") << "+((1))((2))" << QStringList{"(1)", "(2)"};
    QTest::newRow("one behind the other") << "+(1)x(2)" << QStringList{"1", "(2"};
    QTest::newRow("a binary one of one") << "+(1)" << QStringList{"1", ""};
    QTest::newRow("never closed") << "+((1)" << QStringList();
    QTest::newRow("a character alone") << "+" << QStringList();
    QTest::newRow("no parentheses at all") << "!12" << QStringList{"!12"};
    QTest::newRow("opened only") << "!(12" << QStringList{"12"};
    QTest::newRow("closed only") << "!12)" << QStringList{"!12"};
    QTest::newRow("binary without the first") << "+12(3)" << QStringList{"+", "(3"};
    QTest::newRow("binary without the last") << "+(12)(3" << QStringList{"12", "3"};
}

void tst_CustomLayer::OperandsAreSplit()
{
    QFETCH(QString, code);
    QTEST(SplitOperands(code), "operands");
}

void tst_CustomLayer::IdsAreParsed_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QList<int>>("ids");
    QTest::addColumn<QStringList>("invalid");
    QTest::newRow("nothing") << "" << QList<int>() << QStringList();
    QTest::newRow("complement") << "!(12)" << QList<int>{12} << QStringList();
    QTest::newRow("union") << "+(3)(7)" << QList<int>{3, 7} << QStringList();
    QTest::newRow("morphological") << "c(5:25)" << QList<int>{5} << QStringList();
    QTest::newRow("without a radius") << "c(5)" << QList<int>{5} << QStringList();
    QTest::newRow("a radius only") << "c(:25)" << QList<int>() << QStringList{":25"};
    QTest::newRow("a radius where none is") << "!(5:25)" << QList<int>() << QStringList{"5:25"};
    QTest::newRow("no number") << "+(3)(x)" << QList<int>{3} << QStringList{"x"};
    QTest::newRow("no numbers") << "+(y)(x)" << QList<int>() << QStringList{"y", "x"};
    QTest::newRow("cut before it is said") << "d(x:25)" << QList<int>() << QStringList{"x"};
    QTest::newRow("a place holder") << "!(%2)" << QList<int>() << QStringList{"%2"};
    QTest::newRow("blank") << "?( )" << QList<int>() << QStringList{" "};
}

void tst_CustomLayer::IdsAreParsed()
{
    QFETCH(QString, code);
    QFETCH(QStringList, invalid);
    QTEST(ParseIds(code), "ids");
    QStringList messages;
    for (const QString& operand : qAsConst(invalid)) {
        messages.append("Error: Code '" + code + "' contains invalid ID - '" + operand + "'");
    }
    QCOMPARE(m_log->Messages(), messages);
}

void tst_CustomLayer::ARadiusIsRead_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<int>("radius");
    QTest::newRow("a radius") << "e(5:25)" << 25;
    QTest::newRow("the longest") << "e(5:2000)" << 2000;
    QTest::newRow("no colon") << "e(25)" << 0;
    QTest::newRow("no parenthesis") << "e(5:25" << 0;
    QTest::newRow("no number") << "e(5:x)" << 0;
    QTest::newRow("no whole number") << "e(5:2.5)" << 0;
    QTest::newRow("too large") << "e(5:99999999999)" << 0;
    QTest::newRow("the first colon and what closes behind it") << "e)5:25)(:3)" << 25;
    QTest::newRow("nothing") << "" << 0;
}

void tst_CustomLayer::ARadiusIsRead()
{
    QFETCH(QString, code);
    QTEST(RadiusFromCode(code), "radius");
}

void tst_CustomLayer::SetOperationsAreEvaluated_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QImage>("expected");
    const QImage a = MaskFromArt(ArtA());
    const QImage b = MaskFromArt(ArtB());
    QTest::newRow("complement") << "!(A)" << raster::Complement(a);
    QTest::newRow("union") << "+(A)(B)" << raster::Union(a, b);
    QTest::newRow("intersection") << ".(A)(B)" << raster::Intersection(a, b);
    QTest::newRow("difference") << "-(A)(B)" << raster::Difference(a, b);
    QTest::newRow("the other difference") << "-(B)(A)" << raster::Difference(b, a);
}

void tst_CustomLayer::SetOperationsAreEvaluated()
{
    QFETCH(QString, code);
    QTEST(EvaluateAtLayerSize(Code(code)), "expected");
    QCOMPARE(m_log->Messages(), QStringList());
}

void tst_CustomLayer::MorphologyIsEvaluated_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QImage>("expected");
    const QImage a = MaskFromArt(ArtA());
    QTest::newRow("erosion") << "e(A:1)" << raster::Erode(a, 1);
    QTest::newRow("dilation") << "d(A:2)" << raster::Dilate(a, 2);
    QTest::newRow("opening") << "o(A:1)" << raster::Open(a, 1);
    QTest::newRow("closing") << "c(A:2)" << raster::Close(a, 2);
    QTest::newRow("without a radius") << "e(A)" << a;
    QTest::newRow("radius 0") << "d(A:0)" << a;
    QTest::newRow("a negative radius") << "d(A:-3)" << a;
}

void tst_CustomLayer::MorphologyIsEvaluated()
{
    QFETCH(QString, code);
    QTEST(EvaluateAtLayerSize(Code(code)), "expected");
    QCOMPARE(m_log->Messages(), QStringList());
}

void tst_CustomLayer::RadiiAreConvertedInFloats_data()
{
    QTest::addColumn<QSize>("layerSize");
    QTest::addColumn<QSize>("worldSize");
    QTest::addColumn<int>("metres");
    QTest::addColumn<int>("pixels");
    const QSize usual(2048, 2048);
    QTest::newRow("truncated") << usual << QSize(15360, 15360) << 25 << 3;
    QTest::newRow("below a pixel") << usual << QSize(15360, 15360) << 7 << 0;
    QTest::newRow("in double it would be 3") << usual << QSize(12800, 12800) << 25 << 4;
    QTest::newRow("100 m") << usual << QSize(12800, 12800) << 100 << 16;
    QTest::newRow("625 m") << QSize(4096, 4096) << QSize(5000, 5000) << 625 << 512;
    QTest::newRow("a wide world") << usual << QSize(8192, 1024) << 40 << 10;
    QTest::newRow("a high world") << usual << QSize(1024, 8192) << 40 << 80;
    QTest::newRow("a wide layer") << QSize(2048, 256) << QSize(2048, 2048) << 40 << 40;
    QTest::newRow("a high layer") << QSize(256, 2048) << QSize(2048, 2048) << 40 << 5;
}

void tst_CustomLayer::RadiiAreConvertedInFloats()
{
    QFETCH(QSize, layerSize);
    QFETCH(QSize, worldSize);
    QFETCH(int, metres);
    QFETCH(int, pixels);
    ProjectSettings::Instance().SetSizes(layerSize.width(), layerSize.height(), worldSize.width(),
                                         worldSize.height());
    const QImage runs = RunsAround(pixels);
    for (const Morphology& each : AllMorphology()) {
        // Closing treats gaps as opening treats runs.
        const QImage mask = each.character == 'c' ? raster::Complement(runs) : runs;
        m_a->SetImage(mask, Qt::white);
        const QString code =
            QString("%1(%2:%3)").arg(QChar(each.character)).arg(m_a->Id()).arg(metres);
        const QImage image = Evaluate(*m_layers, code, mask.width(), mask.height());
        const auto radius = static_cast<float>(pixels);
        QCOMPARE(image, each.function(mask, radius));
        QVERIFY(image != each.function(mask, radius + 1));
        QVERIFY(pixels == 0 || image != each.function(mask, radius - 1));
    }
}

void tst_CustomLayer::AFactorThatIsNoNumberCountsAsZero()
{
    ProjectSettings::Instance().SetSizes(0, 0, 0, 0);
    QVERIFY(qIsNaN(ProjectSettings::Instance().PixelsPerMetreX()));
    QCOMPARE(Evaluate(*m_layers, Code("d(A:25)"), 8, 8), m_a->Image());
}

void tst_CustomLayer::AnInfiniteFactorReachesEverything()
{
    ProjectSettings::Instance().SetSizes(8, 8, 0, 0);
    const QImage full = raster::Complement(raster::BlankMask({8, 8}));
    QCOMPARE(EvaluateAtLayerSize(Code("d(A:1)")), full);
    QCOMPARE(EvaluateAtLayerSize(Code("d(A:0)")), m_a->Image());
}

void tst_CustomLayer::HugeRadiiTakeNoMemory()
{
    // 2000 m are 128000 pixels here. A list of the offsets would not fit into memory.
    ProjectSettings::Instance().SetSizes(512, 512, 8, 8);
    const QImage full = raster::Complement(raster::BlankMask({512, 512}));
    QCOMPARE(EvaluateAtLayerSize(Code("d(A:2000)")), full);
    QCOMPARE(EvaluateAtLayerSize(Code("e(A:2000)")), raster::BlankMask({512, 512}));
}

void tst_CustomLayer::OperandsAreScaled()
{
    const QImage preview = Evaluate(*m_layers, Code("+(A)(B)"), 4, 2);
    const auto scaled = [](const Layer* layer) {
        return layer->Image().scaled(4, 2, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    };
    QCOMPARE(preview, raster::Union(scaled(m_a), scaled(m_b)));
    QCOMPARE(preview.format(), QImage::Format_Indexed8);

    m_b->SetImage(raster::BlankMask({3, 5}), Qt::white);
    QCOMPARE(EvaluateAtLayerSize(Code("+(A)(B)")), m_a->Image());
}

void tst_CustomLayer::OperandsComeFromTheListThatIsPassed()
{
    LayerList others;
    auto layer = std::make_unique<Layer>(0, 0, &others, "other");
    layer->SetImage(MaskFromArt(ArtB()), Qt::white);
    const QString code = QString("!(%1)").arg(layer->Id());
    QVERIFY(others.AddLayer(std::move(layer)));
    QCOMPARE(Evaluate(others, code, 8, 8), raster::Complement(MaskFromArt(ArtB())));
    QVERIFY(EvaluateAtLayerSize(code).isNull());
    QVERIFY(Evaluate(others, Code("!(A)"), 8, 8).isNull());
}

void tst_CustomLayer::PreviewsKeepTheRadiusInFullSizePixels()
{
    const QImage half = m_b->Image().scaled(4, 4, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    QCOMPARE(Evaluate(*m_layers, Code("d(B:2)"), 4, 4), raster::Dilate(half, 2));
}

void tst_CustomLayer::SizesOfNothingGiveNull()
{
    for (const char* code : {"!(A)", "d(A:2)", "c(A:2)", "+(A)(B)", "-(A)(B)"}) {
        for (const QSize& size : {QSize(0, 8), QSize(8, 0), QSize(-1, 8), QSize(8, -1)}) {
            QVERIFY(Evaluate(*m_layers, Code(code), size.width(), size.height()).isNull());
        }
    }
}

void tst_CustomLayer::CodesThatCannotBeEvaluatedAreLogged_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("one id of two") << "+(A)(x)"
                                   << QStringList{"Code '%1' contains invalid ID - 'x'",
                                                  "Unknown unary operator in code '%1'"};
    QTest::newRow("two operands of one") << "!(4)(5)"
                                         << QStringList{"Code '%1' contains invalid ID - '4)(5'",
                                                        "Unsupported operation in code '%1'"};
    QTest::newRow("no operation") << "?( )"
                                  << QStringList{"Code '%1' contains invalid ID - ' '",
                                                 "Unsupported operation in code '%1'"};
    QTest::newRow("an unknown operation")
        << "x(A)" << QStringList{"Unknown unary operator in code '%1'"};
    QTest::newRow("operands that never end")
        << "+((A)" << QStringList{"Unsupported operation in code '%1'"};
    QTest::newRow("another alphabet")
        << QString::fromUtf8("é(A)") << QStringList{"Unknown unary operator in code '%1'"};
}

void tst_CustomLayer::CodesThatCannotBeEvaluatedAreLogged()
{
    QFETCH(QString, code);
    QFETCH(QStringList, messages);
    code = Code(code);
    QVERIFY(EvaluateAtLayerSize(code).isNull());
    for (QString& message : messages) {
        message = "Error: " + message.replace("%1", code);
    }
    QCOMPARE(m_log->Messages(), messages);
}

void tst_CustomLayer::NothingIsEvaluatedOverAnEmptyList_data()
{
    QTest::addColumn<QString>("code");
    for (const char* code : {"", "!(0)", "+(0)(1)", "e(0:5)", "?( )", "+(0)(x)"}) {
        QTest::addRow("'%s'", code) << code;
    }
}

void tst_CustomLayer::NothingIsEvaluatedOverAnEmptyList()
{
    QFETCH(QString, code);
    QVERIFY(Evaluate(LayerList(), code, 8, 8).isNull());
    QCOMPARE(m_log->Messages(), QStringList());
    QVERIFY(EvaluateAtLayerSize("").isNull());
}

void tst_CustomLayer::IdsOfNoLayerGiveNullSilently_data()
{
    QTest::addColumn<QString>("code");
    for (const char* code : {"!(99999)", "d(99999:1)", "+(A)(99999)", "-(99999)(B)", "!(-1)"}) {
        QTest::addRow("'%s'", code) << code;
    }
}

void tst_CustomLayer::IdsOfNoLayerGiveNullSilently()
{
    QFETCH(QString, code);
    QVERIFY(EvaluateAtLayerSize(Code(code)).isNull());
    QCOMPARE(m_log->Messages(), QStringList());
}

void tst_CustomLayer::TheListMayGoWhileAMessageIsShown()
{
    const QString code = Code("+(A)(x)");
    QTimer::singleShot(0, this, [this] { m_layers.reset(); });
    QVERIFY(EvaluateAtLayerSize(code).isNull());
    QVERIFY(!m_layers);
    QCOMPARE(m_log->Messages().size(), 2);
}

void tst_CustomLayer::ACodeReplacesTheImage()
{
    QVERIFY(m_b->SetCode(Code("!(A)")));
    QCOMPARE(m_b->Code(), Code("!(A)"));
    QCOMPARE(m_b->Image(), raster::Complement(MaskFromArt(ArtA())));
    QCOMPARE(ArtFromMask(m_a->Image()), ArtA());
}

void tst_CustomLayer::ACodeIsEvaluatedAtTheLayerSize_data()
{
    QTest::addColumn<QSize>("layerSize");
    QTest::addColumn<QSize>("operandSize");
    QTest::newRow("a wide layer") << QSize(12, 5) << QSize(12, 5);
    QTest::newRow("a high layer") << QSize(5, 12) << QSize(5, 12);
    QTest::newRow("operands of the other side") << QSize(12, 5) << QSize(5, 12);
    QTest::newRow("smaller operands") << QSize(12, 5) << QSize(3, 2);
    QTest::newRow("larger operands") << QSize(5, 12) << QSize(40, 31);
}

/// The former size of the layer's image does not matter.
void tst_CustomLayer::ACodeIsEvaluatedAtTheLayerSize()
{
    QFETCH(QSize, layerSize);
    QFETCH(QSize, operandSize);
    Random random;
    const QImage operand = RandomMask(random, operandSize);
    m_a->SetImage(operand, Qt::white);
    ProjectSettings::Instance().SetSizes(layerSize.width(), layerSize.height(), 8, 8);
    const QImage scaled = operand.scaled(layerSize, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    QVERIFY(m_b->SetCode(Code("!(A)")));
    QCOMPARE(m_b->Image(), raster::Complement(scaled));
    QVERIFY(m_b->SetCode(Code("+(A)(B)")));
    QCOMPARE(m_b->Image(), raster::Union(scaled, raster::Complement(scaled)));
    QCOMPARE(m_a->Image(), operand);
}

void tst_CustomLayer::ACodeIsEvaluatedOverTheListOfItsLayer()
{
    LayerList others;
    auto other = std::make_unique<Layer>(0, 0, &others, "other");
    Layer* layer = other.get();
    layer->SetImage(MaskFromArt(ArtB()), Qt::white);
    QVERIFY(others.AddLayer(std::move(other)));
    QVERIFY(!layer->SetCode(Code("!(A)")));
    QCOMPARE(ArtFromMask(layer->Image()), ArtB());
    QVERIFY(layer->SetCode(QString("!(%1)").arg(layer->Id())));
    QCOMPARE(layer->Image(), raster::Complement(MaskFromArt(ArtB())));
}

void tst_CustomLayer::AnEqualCodeChangesNothing()
{
    // The complement of itself, which would flip with each evaluation.
    const QString code = Code("!(A)");
    QVERIFY(m_a->SetCode(code));
    const QImage image = m_a->Image();
    QVERIFY(m_a->SetCode(code));
    QCOMPARE(m_a->Image(), image);
}

void tst_CustomLayer::ACodeThatEvaluatesToNothingChangesNothing_data()
{
    QTest::addColumn<QString>("code");
    for (const char* code : {"", "?( )", "!(99999)", "+(A)(x)"}) {
        QTest::addRow("'%s'", code) << code;
    }
}

void tst_CustomLayer::ACodeThatEvaluatesToNothingChangesNothing()
{
    QFETCH(QString, code);
    const QString before = Code("d(B:1)");
    QVERIFY(m_a->SetCode(before));
    const QImage image = m_a->Image();
    QVERIFY(!m_a->SetCode(Code(code)));
    QCOMPARE(m_a->Code(), before);
    QCOMPARE(m_a->Image(), image);
}

void tst_CustomLayer::ALayerWithoutAListHasNoCode()
{
    Layer layer(0, 0, nullptr, "alone");
    layer.SetImage(MaskFromArt(ArtA()), Qt::white);
    QVERIFY(!layer.SetCode(Code("!(A)")));
    QCOMPARE(layer.Code(), QString());
    QCOMPARE(ArtFromMask(layer.Image()), ArtA());
}

void tst_CustomLayer::TheLayerMayGoWhileAMessageIsShown()
{
    QTimer::singleShot(0, this, [this] { m_layers->RemoveLayer(m_a->Id()); });
    QVERIFY(!m_a->SetCode(Code("x(B)")));
    QCOMPARE(m_layers->Layers(), QVector<Layer*>{m_b});
}

QTEST_MAIN(tst_CustomLayer)

#include "tst_CustomLayer.moc"

#include "layers/CustomLayer.h"
#include "layers/CustomLayerWorker.h"
#include "layers/raster/SetOperations.h"
#include "tests/support/CustomLayerFixture.h"
#include "tests/support/OrderedEvents.h"

#include <QAbstractItemView>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

namespace {

QImage Picture(const QLabel* label)
{
    return label->pixmap(Qt::ReturnByValue).toImage().convertToFormat(QImage::Format_RGB32);
}

QImage Picture(const QImage& mask)
{
    return mask.convertToFormat(QImage::Format_RGB32);
}

} // namespace

/// The dialog, executed as in the editor.
class tst_DialogCustomLayerModal : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void AddsALayer_data();
    void AddsALayer();
    void ModifiesALayer();
    void ModifiesALayerOverItself();
    void RenamesALayerWithTheSameCode();
    void RefusesABadName_data();
    void RefusesABadName();
    void LetsALayerKeepItsName();
    void TakesTheNameOfALayerWithoutAnImage();
    void ChecksTheNameWhenItIsConfirmed();
    void AddsNothingWithoutALayerSize();
    void KeepsALayerWithoutALayerSize();
    void HasNothingToChooseInAnEmptyList();
    void ForgetsALayerThatGoes();
    void AddsNothingForALayerThatGoes();

    void ShowsInputsAndPreview();
    void KeepsNoneForNoRow();
    void ChoosesByMouse();
    void ChoosesWithoutShowingOrHiding();
    void ChangesOnlyWhatTheOperationNeeds();

private:
    std::unique_ptr<CustomLayerFixture> m;
};

void tst_DialogCustomLayerModal::init()
{
    m = std::make_unique<CustomLayerFixture>();
}

void tst_DialogCustomLayerModal::cleanup()
{
    m.reset();
}

void tst_DialogCustomLayerModal::AddsALayer_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<QString>("radius");
    QTest::addColumn<QString>("code");

    QTest::newRow("complement") << 0 << ""
                                << "!(A)";
    QTest::newRow("union") << 1 << ""
                           << "+(A)(B)";
    QTest::newRow("intersection") << 2 << ""
                                  << ".(A)(B)";
    QTest::newRow("difference") << 3 << ""
                                << "-(A)(B)";
    QTest::newRow("erosion") << 4 << "1"
                             << "e(A:1)";
    QTest::newRow("dilation") << 5 << "30"
                              << "d(A:30)";
    QTest::newRow("opening") << 6 << "2000"
                             << "o(A:2000)";
    QTest::newRow("closing") << 7 << "45"
                             << "c(A:45)";
}

void tst_DialogCustomLayerModal::AddsALayer()
{
    QFETCH(int, operation);
    QFETCH(QString, radius);
    QFETCH(QString, code);

    const int result = m->Execute(nullptr, [&] {
        QCOMPARE(m->dialog->windowTitle(), "Add layer");
        m->Choose("cboOperation", operation);
        if (code.contains('B')) {
            m->Choose("cboInputB", 1);
        }
        if (!radius.isEmpty()) {
            m->Type("spnRadius", radius);
        }
        m->Type("txtOutputName", "made");
        m->WaitIdle();
        m->Click("btnOk");
        QCOMPARE(m->computations->size(), 1);
        QCOMPARE(m->computations->first().at(1).toString(), m->Code(code));
    });

    QCOMPARE(result, int(QDialog::Accepted));
    QCOMPARE(m->list.Layers().size(), 3);
    QCOMPARE(m->list.Layers().constLast(), m->created);
    QVERIFY(m->created);
    QCOMPARE(m->created->text(), "made");
    QCOMPARE(m->created->Code(), m->Code(code));
    QCOMPARE(m->created->Image(), EvaluateAtLayerSize(m->list, m->Code(code)));
    QCOMPARE(m->created->UsageFlags(), 0U);
    QCOMPARE(m->created->ValueFlags(), 0U);
    QCOMPARE(m->created->Color(), QColor(Qt::white));
    QCOMPARE(m->created->List(), &m->list);
    QVERIFY(!m->created->IsVisible());
    QCOMPARE(m->log.Messages(), QStringList());
}

void tst_DialogCustomLayerModal::ModifiesALayer()
{
    const QImage before = m->second->Image();

    const int result = m->Execute(m->second, [&] {
        QCOMPARE(m->dialog->windowTitle(), "Modify layer - second");
        m->Choose("cboOperation", 3);
        m->Choose("cboInputA", 0);
        m->Type("txtOutputName", "rest");
        m->Click("btnOk");
        QCOMPARE(m->computations->first().at(2).value<Layer*>(), m->second);
    });

    QCOMPARE(result, int(QDialog::Accepted));
    QCOMPARE(m->created, nullptr);
    QCOMPARE(m->list.Layers().size(), 2);
    QCOMPARE(m->second->text(), "rest");
    QCOMPARE(m->second->Code(), m->Code("-(A)(B)"));
    QCOMPARE(m->second->Image(), raster::Difference(m->first->Image(), before));
    QCOMPARE(m->second->Color(), QColor(Qt::red));
}

void tst_DialogCustomLayerModal::ModifiesALayerOverItself()
{
    const QImage before = m->second->Image();

    m->Execute(m->second, [&] {
        m->WaitIdle();
        m->Click("btnOk");
    });

    QCOMPARE(m->second->Code(), m->Code("!(B)"));
    QCOMPARE(m->second->Image(), raster::Complement(before));
    QCOMPARE(m->second->text(), "second");
}

void tst_DialogCustomLayerModal::RenamesALayerWithTheSameCode()
{
    // Paint that was added after the computation stays.
    Layer* layer = m->Add("computed", {0, 0, 3, 3}, m->Code("!(A)"));
    const QImage before = layer->Image();

    m->Execute(layer, [&] {
        m->WaitIdle();
        m->Type("txtOutputName", "named");
        m->Click("btnOk");
    });

    QCOMPARE(layer->text(), "named");
    QCOMPARE(layer->Image(), before);
}

void tst_DialogCustomLayerModal::RefusesABadName_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("empty") << "";
    QTest::newRow("blanks") << "  ";
    QTest::newRow("another layer's") << "first";
    for (const char* character : {"<", ">", ":", "\"", "/", "\\", "|", "?", "*"}) {
        QTest::newRow(character) << QString("a%1b").arg(character);
    }
}

void tst_DialogCustomLayerModal::RefusesABadName()
{
    QFETCH(QString, name);

    m->Execute(nullptr, [&] {
        m->WaitIdle();
        const auto* edit = m->Child<QLineEdit>("txtOutputName");
        QCOMPARE(edit->styleSheet(), "");
        m->Type("txtOutputName", name);
        QCOMPARE(edit->styleSheet(), "QLineEdit { background: rgb(255, 192, 192) }");
        QVERIFY(!m->Child("btnOk")->isEnabled());
        m->Click("btnOk");
        // A preview enables all controls, but "OK" checks the name again.
        m->Choose("cboOperation", 1);
        m->Click("btnOk");
        QVERIFY(!m->Child("btnOk")->isEnabled());
        QCOMPARE(m->computations->size(), 0);

        m->Type("txtOutputName", "First and 2nd");
        QCOMPARE(edit->styleSheet(), "QLineEdit { background: rgb(255, 255, 255) }");
        m->Click("btnOk");
    });

    QVERIFY(m->created);
    QCOMPARE(m->created->text(), "First and 2nd");
}

void tst_DialogCustomLayerModal::LetsALayerKeepItsName()
{
    // The same for the name of another layer.
    m->Add("second", {0, 0, 1, 1});

    m->Execute(m->second, [&] {
        m->WaitIdle();
        const auto* edit = m->Child<QLineEdit>("txtOutputName");
        m->Type("txtOutputName", "first");
        QCOMPARE(edit->styleSheet(), "QLineEdit { background: rgb(255, 192, 192) }");
        m->Type("txtOutputName", "second");
        QCOMPARE(edit->styleSheet(), "QLineEdit { background: rgb(255, 255, 255) }");
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerModal::TakesTheNameOfALayerWithoutAnImage()
{
    m->second->TakePaintedMask({});

    m->Execute(nullptr, [&] {
        m->WaitIdle();
        m->Type("txtOutputName", "second");
        QVERIFY(m->Child("btnOk")->isEnabled());
        m->Click("btnOk");
    });

    QVERIFY(m->created);
    QCOMPARE(m->created->text(), "second");
}

void tst_DialogCustomLayerModal::ChecksTheNameWhenItIsConfirmed()
{
    m->Add("unnamed", {0, 0, 1, 1});

    m->Execute(nullptr, [&] {
        m->WaitIdle();
        QVERIFY(m->Child("btnOk")->isEnabled());
        m->Click("btnOk");
        QVERIFY(!m->Child("btnOk")->isEnabled());
        QCOMPARE(m->Child("txtOutputName")->styleSheet(),
                 "QLineEdit { background: rgb(255, 192, 192) }");
        m->Click("btnCancel");
    });

    QCOMPARE(m->list.Layers().size(), 3);
}

void tst_DialogCustomLayerModal::AddsNothingWithoutALayerSize()
{
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetSizesOnly(0, settings.LayerHeight(), settings.WorldWidth(), settings.WorldHeight());

    const int result = m->Execute(nullptr, [&] {
        m->WaitIdle();
        m->Click("btnOk");
    });

    QCOMPARE(result, int(QDialog::Accepted));
    QCOMPARE(m->created, nullptr);
    QCOMPARE(m->list.Layers().size(), 2);
    QCOMPARE(m->log.Messages(), QStringList{"Error: Layer 'unnamed' could not be computed."});
}

void tst_DialogCustomLayerModal::KeepsALayerWithoutALayerSize()
{
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetSizesOnly(0, settings.LayerHeight(), settings.WorldWidth(), settings.WorldHeight());
    const QImage before = m->second->Image();

    m->Execute(m->second, [&] {
        m->WaitIdle();
        m->Type("txtOutputName", "other");
        m->Click("btnOk");
    });

    QCOMPARE(m->second->text(), "second");
    QCOMPARE(m->second->Code(), "");
    QCOMPARE(m->second->Image(), before);
    QCOMPARE(m->log.Messages(), QStringList{"Error: Layer 'other' could not be computed."});
}

void tst_DialogCustomLayerModal::HasNothingToChooseInAnEmptyList()
{
    m->list.Clear();

    const int result = m->Execute(nullptr, [&] {
        m->WaitIdle();
        QCOMPARE(m->Child<QComboBox>("cboInputA")->count(), 0);
        for (int operation = 1; operation < 8; ++operation) {
            m->Choose("cboOperation", operation);
            QVERIFY(Picture(m->Child<QLabel>("lblImageOutput")).isNull());
        }
        m->Click("btnOk");
    });

    QCOMPARE(result, int(QDialog::Accepted));
    QCOMPARE(m->created, nullptr);
    QVERIFY(m->list.IsEmpty());
}

void tst_DialogCustomLayerModal::ForgetsALayerThatGoes()
{
    m->Execute(nullptr, [&] {
        m->WaitIdle();
        m->dialog->FinalizeLayerComputation(m->first->Image());
        QCOMPARE(m->dialog->CreatedLayer(), m->list.Layers().constLast());
        m->list.RemoveLayer(m->dialog->CreatedLayer()->Id());
        QCOMPARE(m->dialog->CreatedLayer(), nullptr);
    });
}

void tst_DialogCustomLayerModal::AddsNothingForALayerThatGoes()
{
    m->Execute(m->second, [&] {
        m->WaitIdle();
        m->list.RemoveLayer(m->second->Id());
        m->dialog->FinalizeLayerComputation(m->first->Image());
    });

    QCOMPARE(m->created, nullptr);
    QCOMPARE(m->list.Layers(), QVector<Layer*>{m->first});
}

void tst_DialogCustomLayerModal::ShowsInputsAndPreview()
{
    m->Execute(nullptr, [&] {
        const auto* a = m->Child<QLabel>("lblImageInputA");
        const auto* b = m->Child<QLabel>("lblImageInputB");
        const auto* output = m->Child<QLabel>("lblImageOutput");
        const auto scaled = [](const Layer* layer, const QLabel* label) {
            return Picture(layer->Image().scaled(label->size()));
        };
        m->WaitIdle();
        QCOMPARE(Picture(a), scaled(m->first, a));
        QCOMPARE(Picture(b), scaled(m->first, b));
        QCOMPARE(Picture(output),
                 Picture(Evaluate(m->list, m->Code("!(A)"), output->width(), output->height())));
        m->Choose("cboOperation", 2);
        m->Choose("cboInputB", 1);
        QCOMPARE(Picture(a), scaled(m->first, a));
        QCOMPARE(Picture(b), scaled(m->second, b));
        QCOMPARE(m->previews->last().at(2).toSize(), output->size());
        QCOMPARE(Picture(output),
                 Picture(Evaluate(m->list, m->Code(".(A)(B)"), output->width(), output->height())));
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerModal::KeepsNoneForNoRow()
{
    // Another layer may have the id 0.
    m->Execute(nullptr, [&] {
        m->WaitIdle();
        m->Child<QComboBox>("cboInputA")->setCurrentIndex(-1);
        m->WaitIdle();
        QCOMPARE(m->LastCode(), "!(-1)");
        QVERIFY(Picture(m->Child<QLabel>("lblImageInputA")).isNull());
        QVERIFY(Picture(m->Child<QLabel>("lblImageOutput")).isNull());
        m->Click("btnCancel");
    });

    QCOMPARE(m->log.Messages(), QStringList());
}

void tst_DialogCustomLayerModal::ChoosesByMouse()
{
    m->Execute(nullptr, [&] {
        constexpr int inTheText = 60;
        m->WaitIdle();
        m->ChooseByMouse("cboOperation", 1, inTheText);
        m->WaitIdle();
        m->ChooseByMouse("cboInputB", 1, inTheText);
        m->WaitIdle();
        QCOMPARE(m->LastCode(), m->Code("+(A)(B)"));
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerModal::ChoosesWithoutShowingOrHiding()
{
    m->Execute(nullptr, [&] {
        constexpr int inTheCheckBoxOfATree = 8;
        m->WaitIdle();
        m->ChooseByMouse("cboInputA", 1, inTheCheckBoxOfATree);
        m->WaitIdle();
        QCOMPARE(m->LastCode(), m->Code("!(B)"));
        QVERIFY(!m->second->IsVisible());

        auto* view = m->Child<QComboBox>("cboInputA")->view();
        m->Click("cboInputA");
        QVERIFY(QTest::qWaitForWindowExposed(view->window()));
        QTest::keyClick(view, Qt::Key_Space);
        QTest::keyClick(view, Qt::Key_F2);
        QTest::keyClick(view, Qt::Key_Return);
        m->WaitIdle();
        QVERIFY(!m->first->IsVisible() && !m->second->IsVisible());
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerModal::ChangesOnlyWhatTheOperationNeeds()
{
    m->Execute(nullptr, [&] {
        m->Choose("cboOperation", 1);
        QVERIFY(m->Child("groupBoxInputB")->isEnabled());
        QVERIFY(!m->Child("lblRadius")->isEnabled());
        m->Choose("cboOperation", 4);
        QVERIFY(!m->Child("groupBoxInputB")->isEnabled());
        QVERIFY(m->Child("lblRadius")->isEnabled());
        QVERIFY(m->Child("spnRadius")->isEnabled());
        m->Click("btnCancel");
    });
}

int main(int argc, char* argv[])
{
    OrderedApplication application(argc, argv);
    tst_DialogCustomLayerModal test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_DialogCustomLayerModal.moc"

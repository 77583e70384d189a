#include "ui/DialogCustomLayer.h"

#include "app/Log.h"
#include "app/Names.h"
#include "document/Document.h"
#include "document/LiveLayers.h"
#include "document/edits/LayerEdits.h"
#include "layers/CustomLayer.h"
#include "layers/CustomLayerWorker.h"
#include "layers/LayerList.h"
#include "ui/RadiusText.h"
#include "ui/widgets/WheelFocus.h"
#include "ui_DialogCustomLayer.h"

#include <QCloseEvent>
#include <QStandardItemModel>

#include <algorithm>

namespace {

constexpr int NoLayer = -1;
const QColor GoodName(255, 255, 255);
const QColor BadName(255, 192, 192);

} // namespace

DialogCustomLayer::DialogCustomLayer(Document& document, Layer* layerToModify, QWidget* parent)
    : QDialog(parent, Qt::CustomizeWindowHint | Qt::WindowTitleHint)
    , m_ui(std::make_unique<Ui::DialogCustomLayer>())
    , m_document(document)
    , m_list(&document.Layers())
    , m_layerToModify(layerToModify && !layerToModify->Image().isNull() ? layerToModify : nullptr)
    , m_isModifying(m_layerToModify)
{
    m_ui->setupUi(this);
    Connect();
    InitForm();
    // The worker reads the masks, so nothing may write into them any more.
    document.Live().Finish();
    StartWorker();
    LayOut();
    SetPreviewA(m_ui->cboInputA->currentIndex());
    SetPreviewB(m_ui->cboInputB->currentIndex());
    m_ui->cboOperation->setFocus();
    m_canRequest = true;
    EnableControls(true);
    RequestPreview();
}

DialogCustomLayer::~DialogCustomLayer()
{
    // The radius box may lose the focus during its destruction and would then emit editingFinished.
    m_ui->spnRadius->disconnect(this);
    m_thread.quit();
    m_thread.wait();
}

void DialogCustomLayer::Connect()
{
    const auto indexChanged = qOverload<int>(&QComboBox::currentIndexChanged);
    connect(m_ui->btnOk, &QPushButton::clicked, this, &DialogCustomLayer::ConfirmDialog);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &DialogCustomLayer::CloseDialog);
    connect(m_ui->cboOperation, indexChanged, this, &DialogCustomLayer::UpdateOperation);
    connect(m_ui->cboInputA, indexChanged, this, &DialogCustomLayer::SetPreviewA);
    connect(m_ui->cboInputB, indexChanged, this, &DialogCustomLayer::SetPreviewB);
    connect(m_ui->txtOutputName, &QLineEdit::textEdited, this, &DialogCustomLayer::ValidateContent);
    connect(m_ui->spnRadius, &QSpinBox::editingFinished, this, &DialogCustomLayer::RequestPreview);
    connect(m_ui->spnRadius, qOverload<int>(&QSpinBox::valueChanged), this,
            &DialogCustomLayer::ShowRadius);
}

void DialogCustomLayer::InitForm()
{
    TakeWheelOnlyWithFocus(m_ui->spnRadius);
    for (QComboBox* combo : {m_ui->cboInputA, m_ui->cboInputB}) {
        combo->setModel(m_list->model());
        TakeWheelOnlyWithFocus(combo);
    }
    TakeWheelOnlyWithFocus(m_ui->cboOperation);
    setWindowTitle(tr("Add layer"));
    m_ui->chkLive->setVisible(!m_isModifying);
    if (m_layerToModify) {
        ShowLayerToModify();
    }
}

void DialogCustomLayer::ShowLayerToModify()
{
    const QString code = m_layerToModify->Code();
    const int id = m_layerToModify->Id();
    setWindowTitle(tr("Modify layer - %1").arg(m_layerToModify->text()));
    m_ui->txtOutputName->setText(m_layerToModify->text());
    if (code.isEmpty()) {
        SelectLayer(m_ui->cboInputA, id);
        SelectLayer(m_ui->cboInputB, id);
        return;
    }
    const int operation = OperationFromChar(code.at(0).toLatin1());
    m_ui->cboOperation->setCurrentIndex(operation == OperationUnknown ? 0 : operation);
    const QList<int> ids = ParseIds(code);
    if (!ids.isEmpty()) {
        SelectLayer(m_ui->cboInputA, ids.first());
    }
    if (ids.size() > 1) {
        SelectLayer(m_ui->cboInputB, ids.at(1));
    }
    if (IsMorphologicalOperation(operation)) {
        m_ui->spnRadius->setValue(RadiusFromCode(code));
    }
}

/// A layer that was removed is marked. Another one in its place would be computed unseen.
void DialogCustomLayer::SelectLayer(QComboBox* combo, int id)
{
    const int row = combo->findData(id, Qt::UserRole);
    if (row < 0) {
        combo->setPlaceholderText(tr("(removed)"));
    }
    combo->setCurrentIndex(row);
}

/// Whether the layers that the operation works on were not removed.
bool DialogCustomLayer::HasInputs() const
{
    const auto isRemoved = [](const QComboBox* combo) {
        return combo->currentIndex() < 0 && !combo->placeholderText().isEmpty();
    };
    return !isRemoved(m_ui->cboInputA) &&
           !(IsBinaryOperation(m_ui->cboOperation->currentIndex()) && isRemoved(m_ui->cboInputB));
}

void DialogCustomLayer::ShowRadius()
{
    const bool hasRadius = IsMorphologicalOperation(m_ui->cboOperation->currentIndex());
    m_ui->lblRadiusEffective->setText(hasRadius ? RadiusText(m_ui->spnRadius->value()) : QString());
    m_ui->lblPreviewHint->setText(
        hasRadius ? tr("The preview exaggerates: its picture is smaller than the layer.")
                  : QString());
}

void DialogCustomLayer::StartWorker()
{
    qRegisterMetaType<const LayerList*>("const LayerList*");
    qRegisterMetaType<Layer*>("Layer*");
    auto* worker = new CustomLayerWorker;
    worker->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, worker, &QObject::deleteLater);
    connect(this, &DialogCustomLayer::PreviewComputationRequested, worker,
            &CustomLayerWorker::ComputePreview);
    connect(worker, &CustomLayerWorker::PreviewComputationFinished, this,
            &DialogCustomLayer::FinalizePreviewComputation);
    connect(this, &DialogCustomLayer::LayerComputationRequested, worker,
            &CustomLayerWorker::ComputeLayer);
    connect(worker, &CustomLayerWorker::LayerComputationFinished, this,
            &DialogCustomLayer::FinalizeLayerComputation);
    m_thread.start(QThread::InheritPriority);
}

/// Lays the dialog out before it is shown, so that the first pictures get the final size of their
/// labels.
void DialogCustomLayer::LayOut()
{
    ensurePolished();
    layout()->activate();
    for (const QGroupBox* box :
         {m_ui->groupBoxInputA, m_ui->groupBoxInputB, m_ui->groupBoxOutput}) {
        box->layout()->activate();
    }
}

void DialogCustomLayer::EnableControls(bool isIdle)
{
    if (!isIdle && !m_isComputing) {
        m_focus = focusWidget();
    }
    m_isComputing = !isIdle;
    const int operation = m_ui->cboOperation->currentIndex();
    for (QWidget* control :
         std::initializer_list<QWidget*>{m_ui->txtOutputName, m_ui->btnCancel, m_ui->cboOperation,
                                         m_ui->cboInputA, m_ui->chkLive}) {
        control->setEnabled(isIdle);
    }
    m_ui->btnOk->setEnabled(isIdle && HasInputs());
    if (IsBinaryOperation(operation)) {
        m_ui->cboInputB->setEnabled(isIdle);
    }
    if (IsMorphologicalOperation(operation)) {
        m_ui->spnRadius->setEnabled(isIdle);
    }
    m_ui->pgr->setValue(0);
    m_ui->pgr->setRange(0, isIdle ? 1 : 0);
    if (isIdle && m_focus) {
        m_focus->setFocus();
    }
}

void DialogCustomLayer::UpdateOperation(int index)
{
    m_ui->groupBoxInputB->setEnabled(IsBinaryOperation(index));
    m_ui->lblRadius->setEnabled(IsMorphologicalOperation(index));
    m_ui->spnRadius->setEnabled(IsMorphologicalOperation(index));
    ShowRadius();
    RequestPreview();
}

void DialogCustomLayer::SetPreviewA(int row)
{
    ShowInput(m_ui->cboInputA, row, m_ui->lblImageInputA, m_idA);
    RequestPreview();
}

void DialogCustomLayer::SetPreviewB(int row)
{
    ShowInput(m_ui->cboInputB, row, m_ui->lblImageInputB, m_idB);
    RequestPreview();
}

void DialogCustomLayer::ShowInput(QComboBox* combo, int row, QLabel* label, int& id)
{
    id = row < 0 ? NoLayer : combo->itemData(row, Qt::UserRole).toInt();
    const Layer* layer = m_list->LayerById(id);
    label->setPixmap(layer ? QPixmap::fromImage(layer->Image().scaled(
                                 label->size(), Qt::IgnoreAspectRatio, Qt::FastTransformation))
                           : QPixmap());
}

void DialogCustomLayer::TakeExistingLayer(QComboBox* combo, int& id)
{
    if (m_list->LayerById(id)) {
        return;
    }
    combo->setModel(m_list->model());
    const int row = combo->currentIndex();
    id = row < 0 ? NoLayer : combo->itemData(row, Qt::UserRole).toInt();
}

QString DialogCustomLayer::BuildCode()
{
    TakeExistingLayer(m_ui->cboInputA, m_idA);
    TakeExistingLayer(m_ui->cboInputB, m_idB);
    const int operation = m_ui->cboOperation->currentIndex();
    const QString code(QLatin1Char(OperationChar(operation)));
    if (operation == OperationComplement) {
        return code + QStringLiteral("(%1)").arg(m_idA);
    }
    if (IsBinaryOperation(operation)) {
        return code + QStringLiteral("(%1)(%2)").arg(m_idA).arg(m_idB);
    }
    if (IsMorphologicalOperation(operation)) {
        const auto radius = static_cast<double>(m_ui->spnRadius->value());
        return code + QStringLiteral("(%1:%2)").arg(m_idA).arg(radius, 0, 'g',
                                                               QLocale::FloatingPointShortest);
    }
    return code + QStringLiteral("( )");
}

void DialogCustomLayer::RequestPreview()
{
    if (!m_canRequest) {
        return;
    }
    const QString code = BuildCode();
    if (m_isComputing) {
        // Disabling the radius box emits editingFinished again.
        m_isOutdated = m_isOutdated || code != m_runningCode;
        return;
    }
    m_runningCode = code;
    m_isOutdated = false;
    EnableControls(false);
    emit PreviewComputationRequested(m_list, code, m_ui->lblImageOutput->size());
}

void DialogCustomLayer::FinalizePreviewComputation(const QImage& preview)
{
    EnableControls(true);
    m_ui->lblImageOutput->setPixmap(QPixmap::fromImage(preview));
    if (m_isOutdated) {
        RequestPreview();
    }
}

bool DialogCustomLayer::IsNameFree(const QString& name) const
{
    const QVector<Layer*> layers = m_list->Layers();
    return std::none_of(layers.begin(), layers.end(), [&](const Layer* layer) {
        return layer->text() == name && !layer->Image().isNull() &&
               !(m_layerToModify && m_layerToModify->text() == name);
    });
}

/// Makes the name readable on both of its backgrounds, which are light even with a dark palette.
void DialogCustomLayer::SetDarkText()
{
    if (!m_ui->txtOutputName->styleSheet().isEmpty()) {
        return;
    }
    QPalette colors = m_ui->txtOutputName->palette();
    colors.setColor(QPalette::Text, Qt::black);
    colors.setColor(QPalette::Disabled, QPalette::Text, Qt::darkGray);
    m_ui->txtOutputName->setPalette(colors);
}

void DialogCustomLayer::ValidateContent(const QString& name)
{
    const bool isGood = IsValidName(name) && IsNameFree(name);
    const QColor color = isGood ? GoodName : BadName;
    SetDarkText();
    m_ui->txtOutputName->setStyleSheet(QStringLiteral("QLineEdit { background: %1 }")
                                           .arg(QStringLiteral("rgb(%1, %2, %3)")
                                                    .arg(color.red())
                                                    .arg(color.green())
                                                    .arg(color.blue())));
    m_ui->btnOk->setEnabled(isGood && HasInputs());
}

void DialogCustomLayer::ConfirmDialog()
{
    if (m_isComputing) {
        return;
    }
    ValidateContent(m_ui->txtOutputName->text());
    if (!m_ui->btnOk->isEnabled()) {
        return;
    }
    m_runningCode = BuildCode();
    m_isOutdated = false;
    EnableControls(false);
    emit LayerComputationRequested(m_list, m_runningCode, m_layerToModify);
}

void DialogCustomLayer::FinalizeLayerComputation(const QImage& image)
{
    EnableControls(true);
    const QString name = m_ui->txtOutputName->text();
    bool isComputed = !image.isNull();
    if (!m_isModifying) {
        if (isComputed) {
            m_document.Do(Edits::AddComputedLayer(*m_list, name, m_runningCode, image,
                                                  m_ui->chkLive->isChecked()));
            m_createdLayer = m_list->LayerAt(m_list->model()->rowCount() - 1);
        }
    } else if (m_layerToModify && isComputed) {
        // Without a result the layer stays what it was, name included.
        auto edit = Edits::ModifyLayer(*m_layerToModify, name, m_runningCode, image);
        if (edit) {
            m_document.Do(std::move(edit));
        } else {
            isComputed = false;
        }
    }
    accept();
    if (!isComputed) {
        LogError(QStringLiteral("Layer '%1' could not be computed.").arg(name));
    }
}

/// Closing takes the focus from the radius box, which emits editingFinished. That must not start a
/// preview any more.
void DialogCustomLayer::done(int result)
{
    m_canRequest = false;
    QDialog::done(result);
}

void DialogCustomLayer::CloseDialog()
{
    reject();
}

void DialogCustomLayer::reject()
{
    if (!m_isComputing) {
        QDialog::reject();
    }
}

void DialogCustomLayer::closeEvent(QCloseEvent* event)
{
    if (m_isComputing) {
        event->ignore();
    } else {
        QDialog::closeEvent(event);
    }
}

#include "ui/dialogs/DialogGrowLayer.h"

#include "layers/CustomLayerWorker.h"
#include "layers/Formula.h"
#include "ui/NameList.h"
#include "ui/RadiusText.h"
#include "ui/widgets/WheelFocus.h"
#include "ui_DialogGrowLayer.h"

#include <QCloseEvent>

DialogGrowLayer::DialogGrowLayer(const LayerList& list, const Layer& layer, Purpose purpose,
                                 QWidget* parent)
    : QDialog(parent, Qt::CustomizeWindowHint | Qt::WindowTitleHint)
    , m_ui(std::make_unique<Ui::DialogGrowLayer>())
    , m_list(list)
    , m_id(layer.Id())
    , m_purpose(purpose)
{
    m_ui->setupUi(this);
    const QString title = purpose == Purpose::Grow     ? tr("Grow %1")
                          : purpose == Purpose::Shrink ? tr("Shrink %1")
                                                       : tr("Live ring around %1");
    setWindowTitle(title.arg(ShortText(layer.text())));
    if (purpose == Purpose::Ring) {
        m_ui->spnRadius->setToolTip(tr("How wide the ring is, in metres"));
    }
    TakeWheelOnlyWithFocus(m_ui->spnRadius);
    connect(m_ui->spnRadius, qOverload<int>(&QSpinBox::valueChanged), this,
            &DialogGrowLayer::ShowRadius);
    connect(m_ui->btnOk, &QPushButton::clicked, this, &DialogGrowLayer::accept);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &DialogGrowLayer::reject);
    ShowRadius();
    QSizePolicy policy = m_ui->pgr->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_ui->pgr->setSizePolicy(policy);
    m_ui->pgr->hide();
    m_ui->spnRadius->setFocus();
    m_ui->spnRadius->selectAll();
}

DialogGrowLayer::~DialogGrowLayer()
{
    m_thread.quit();
    m_thread.wait();
}

int DialogGrowLayer::Metres() const
{
    return m_ui->spnRadius->value();
}

void DialogGrowLayer::ShowRadius()
{
    m_ui->lblRadiusEffective->setText(RadiusText(Metres()));
}

void DialogGrowLayer::accept()
{
    if (m_isComputing) {
        return;
    }
    m_isComputing = true;
    for (QWidget* control :
         std::initializer_list<QWidget*>{m_ui->spnRadius, m_ui->btnOk, m_ui->btnCancel}) {
        control->setEnabled(false);
    }
    m_ui->pgr->setRange(0, 0);
    m_ui->pgr->show();
    auto* worker = new CustomLayerWorker;
    worker->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, worker, &QObject::deleteLater);
    connect(worker, &CustomLayerWorker::LayerComputationFinished, this, &DialogGrowLayer::Finish);
    m_thread.start(QThread::InheritPriority);
    const CustomOperation operation =
        m_purpose == Purpose::Shrink ? OperationErosion : OperationDilation;
    const QString code = Formula{operation, {m_id}, Metres()}.Code();
    QMetaObject::invokeMethod(
        worker, [worker, list = &m_list, code] { worker->ComputeLayer(list, code, nullptr); },
        Qt::QueuedConnection);
}

void DialogGrowLayer::Finish(const QImage& mask)
{
    m_isComputing = false;
    m_mask = mask;
    QDialog::accept();
}

void DialogGrowLayer::reject()
{
    if (!m_isComputing) {
        QDialog::reject();
    }
}

void DialogGrowLayer::closeEvent(QCloseEvent* event)
{
    if (m_isComputing) {
        event->ignore();
    } else {
        QDialog::closeEvent(event);
    }
}

#include "ui/dialogs/DialogMergeLayer.h"

#include "document/Document.h"
#include "ui/NameList.h"
#include "ui/widgets/WheelFocus.h"
#include "ui_DialogMergeLayer.h"

DialogMergeLayer::DialogMergeLayer(const Document& document, const Layer& layer, QWidget* parent)
    : QDialog(parent, Qt::CustomizeWindowHint | Qt::WindowTitleHint)
    , m_ui(std::make_unique<Ui::DialogMergeLayer>())
    , m_document(document)
{
    m_ui->setupUi(this);
    setWindowTitle(tr("Merge %1").arg(ShortText(layer.text())));
    TakeWheelOnlyWithFocus(m_ui->cboMergeInto);
    FillTargets(layer);
    connect(m_ui->cboMergeInto, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &DialogMergeLayer::ShowProblem);
    connect(m_ui->btnOk, &QPushButton::clicked, this, &DialogMergeLayer::accept);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &DialogMergeLayer::reject);
    ShowProblem();
}

DialogMergeLayer::~DialogMergeLayer() = default;

void DialogMergeLayer::FillTargets(const Layer& layer)
{
    QComboBox& combo = *m_ui->cboMergeInto;
    int proposed = 0;
    bool isBelow = false;
    const QVector<Layer*> layers = m_document.Layers().Layers();
    for (const Layer* other : layers) {
        if (other == &layer) {
            continue;
        }
        combo.addItem(other->text(), other->Id());
        const int row = combo.count() - 1;
        combo.setItemData(row, other->data(Qt::DecorationRole), Qt::DecorationRole);
        if (m_document.WhyPixelsStay(*other).isEmpty() && !isBelow) {
            proposed = row;
            isBelow = other->row() > layer.row();
        }
    }
    combo.setCurrentIndex(proposed);
}

Layer* DialogMergeLayer::Target() const
{
    return m_ui->cboMergeInto->count() == 0
               ? nullptr
               : m_document.Layers().LayerById(m_ui->cboMergeInto->currentData().toInt());
}

void DialogMergeLayer::ShowProblem()
{
    const Layer* target = Target();
    const QString why = target ? m_document.WhyPixelsStay(*target) : tr("There is no other layer.");
    m_ui->lblMergeProblem->setText(why);
    m_ui->btnOk->setEnabled(why.isEmpty());
}

void DialogMergeLayer::accept()
{
    if (m_ui->btnOk->isEnabled()) {
        QDialog::accept();
    }
}

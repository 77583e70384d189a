#include "ui/dialogs/DialogJoinTerritories.h"

#include "territories/Territory.h"
#include "ui/NameList.h"
#include "ui_DialogJoinTerritories.h"

DialogJoinTerritories::DialogJoinTerritories(const Territory& target,
                                             const QVector<Territory*>& others, QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogJoinTerritories>())
    , m_others(others)
{
    m_ui->setupUi(this);
    // A single ampersand would mark a key.
    const QString name = ShortText(target.text()).replace(QLatin1Char('&'), QLatin1String("&&"));
    m_ui->lblJoinTerritories->setText(tr("&Territories whose zones come into %1:").arg(name));
    for (const Territory* other : others) {
        auto* item = new QListWidgetItem(other->text(), m_ui->lstJoinTerritories);
        item->setData(Qt::DecorationRole, other->data(Qt::DecorationRole));
        item->setCheckState(Qt::Unchecked);
    }
    m_ui->lstJoinTerritories->setCurrentRow(0);
    m_ui->lstJoinTerritories->setFocus();
    m_ui->btnOk->setEnabled(false);
    connect(m_ui->lstJoinTerritories, &QListWidget::itemChanged, this,
            [this] { m_ui->btnOk->setEnabled(!Chosen().isEmpty()); });
    connect(m_ui->btnOk, &QPushButton::clicked, this, &DialogJoinTerritories::accept);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
}

DialogJoinTerritories::~DialogJoinTerritories() = default;

QVector<Territory*> DialogJoinTerritories::Chosen() const
{
    QVector<Territory*> chosen;
    for (int row = 0; row < m_others.size(); ++row) {
        if (m_ui->lstJoinTerritories->item(row)->checkState() == Qt::Checked) {
            chosen.append(m_others[row]);
        }
    }
    return chosen;
}

void DialogJoinTerritories::accept()
{
    if (!Chosen().isEmpty()) {
        QDialog::accept();
    }
}

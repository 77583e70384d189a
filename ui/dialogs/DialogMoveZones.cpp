#include "ui/dialogs/DialogMoveZones.h"

#include "document/edits/ZoneEdits.h"
#include "ui/widgets/WheelFocus.h"
#include "ui_DialogMoveZones.h"

#include <QLocale>

DialogMoveZones::DialogMoveZones(int zones, QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogMoveZones>())
{
    m_ui->setupUi(this);
    setWindowTitle(tr("Move %1 by metres").arg(Edits::ZonesText(zones)));
    for (QDoubleSpinBox* box : {m_ui->spnMoveX, m_ui->spnMoveZ}) {
        // As in all other fields, and in files, numbers have a point.
        box->setLocale(QLocale::c());
        TakeWheelOnlyWithFocus(box);
    }
    connect(m_ui->btnOk, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    m_ui->spnMoveX->setFocus();
    m_ui->spnMoveX->selectAll();
}

DialogMoveZones::~DialogMoveZones() = default;

double DialogMoveZones::MetresX() const
{
    return m_ui->spnMoveX->value();
}

double DialogMoveZones::MetresZ() const
{
    return m_ui->spnMoveZ->value();
}

#include "ui/dialogs/DialogZonesTo.h"

#include "document/Document.h"
#include "document/edits/ZoneEdits.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "ui/NameList.h"
#include "ui/widgets/WheelFocus.h"
#include "ui_DialogZonesTo.h"

#include <QCompleter>
#include <QLineEdit>

#include <algorithm>

namespace {

/// The territory that holds all of the zones; null when there are several.
const Territory* OnlyHolder(const QVector<Zone*>& zones)
{
    const Territory* holder = zones.isEmpty() ? nullptr : zones.first()->Holder();
    const bool isOnly = std::all_of(zones.begin(), zones.end(), [holder](const Zone* zone) {
        return zone->Holder() == holder;
    });
    return isOnly ? holder : nullptr;
}

} // namespace

DialogZonesTo::DialogZonesTo(const Document& document, const QVector<Zone*>& zones, bool doesCopy,
                             QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogZonesTo>())
{
    m_ui->setupUi(this);
    const QString what = Edits::ZonesText(zones.size());
    setWindowTitle(doesCopy ? tr("Copy %1").arg(what) : tr("Move %1").arg(what));
    m_ui->btnOk->setText(doesCopy ? tr("Copy") : tr("Move"));
    FillTargets(document, doesCopy ? nullptr : OnlyHolder(zones));
    QComboBox& combo = *m_ui->cboZonesTo;
    TakeWheelOnlyWithFocus(&combo);
    auto* completer = new QCompleter(combo.model(), this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    combo.setCompleter(completer);
    connect(&combo, &QComboBox::editTextChanged, this, &DialogZonesTo::ShowProblem);
    connect(&combo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &DialogZonesTo::ShowProblem);
    connect(m_ui->btnOk, &QPushButton::clicked, this, &DialogZonesTo::accept);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    combo.setFocus();
    combo.lineEdit()->selectAll();
    ShowProblem();
}

DialogZonesTo::~DialogZonesTo() = default;

void DialogZonesTo::FillTargets(const Document& document, const Territory* leftOut)
{
    const QVector<TerritoryType*> types = document.Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (Territory* territory : territories) {
            if (territory != leftOut) {
                m_ui->cboZonesTo->addItem(tr("%1 / %2").arg(type->text(), territory->text()));
                m_targets.append(territory);
            }
        }
    }
}

QVector<int> DialogZonesTo::Matches() const
{
    const QComboBox& combo = *m_ui->cboZonesTo;
    const QString text = combo.currentText();
    const int current = combo.currentIndex();
    if (current >= 0 && combo.itemText(current) == text) {
        return {current};
    }
    QVector<int> equal;
    QVector<int> holding;
    for (int i = 0; i < m_targets.size(); ++i) {
        const QString label = combo.itemText(i);
        if (label.compare(text.trimmed(), Qt::CaseInsensitive) == 0) {
            equal.append(i);
        } else if (label.contains(text.trimmed(), Qt::CaseInsensitive)) {
            holding.append(i);
        }
    }
    return equal.isEmpty() ? holding : equal;
}

Territory* DialogZonesTo::Target() const
{
    const QVector<int> matches = Matches();
    return matches.size() == 1 ? m_targets[matches.first()] : nullptr;
}

void DialogZonesTo::ShowProblem()
{
    const QString text = m_ui->cboZonesTo->currentText();
    const int count = Matches().size();
    QString problem;
    if (m_targets.isEmpty()) {
        problem = tr("There is no other territory.");
    } else if (count == 0) {
        problem = tr("No territory is called \"%1\".").arg(ShortText(text));
    } else if (count > 1) {
        problem = text.isEmpty() ? tr("Choose a territory.")
                                 : tr("Several territories match \"%1\". Choose one from the list.")
                                       .arg(ShortText(text));
    }
    m_ui->lblZonesToProblem->setText(problem);
    m_ui->btnOk->setEnabled(problem.isEmpty());
}

void DialogZonesTo::accept()
{
    if (Target()) {
        QDialog::accept();
    }
}

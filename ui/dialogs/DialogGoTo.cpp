#include "ui/dialogs/DialogGoTo.h"

#include "canvas/ZoomSteps.h"
#include "ui_DialogGoTo.h"

#include <QCompleter>
#include <QPushButton>

#include <cmath>
#include <utility>

namespace {

/// Metres as the user reads them.
QString Metres(double metres)
{
    return QString::number(metres, 'g', 8);
}

/// Why the text is no coordinate of the world; empty if it is one.
QString ProblemOf(const QString& text, const QString& axis, double most, double& metres)
{
    bool isNumber = false;
    metres = text.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(metres)) {
        return DialogGoTo::tr("%1: \"%2\" is not a number of metres.").arg(axis, text);
    }
    if (metres < 0 || metres > most) {
        return DialogGoTo::tr("%1 is between 0 and %2 m.").arg(axis, Metres(most));
    }
    return {};
}

} // namespace

DialogGoTo::DialogGoTo(const SceneScale& scale, const ViewPlace& present, QVector<GoTarget> targets,
                       QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogGoTo>())
    , m_scale(scale)
    , m_present(present)
    , m_targets(std::move(targets))
    , m_place(present)
{
    m_ui->setupUi(this);
    FillZooms();
    OfferNames();
    LetOneWayClearTheOther();
    if (m_scale.IsUsable()) {
        const QPointF metres = m_scale.ToWorld(present.center);
        m_ui->txtGoX->setPlaceholderText(Metres(std::round(metres.x())));
        m_ui->txtGoZ->setPlaceholderText(Metres(std::round(metres.y())));
    }
    for (QLineEdit* edit : {m_ui->txtGoX, m_ui->txtGoZ, m_ui->txtGoName}) {
        connect(edit, &QLineEdit::textChanged, this, &DialogGoTo::ShowAnswer);
    }
    connect(m_ui->cboGoZoom, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &DialogGoTo::ShowAnswer);
    connect(m_ui->btnOk, &QPushButton::clicked, this, &DialogGoTo::accept);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    ShowAnswer();
}

DialogGoTo::~DialogGoTo() = default;

void DialogGoTo::accept()
{
    if (m_ui->btnOk->isEnabled()) {
        QDialog::accept();
    }
}

void DialogGoTo::FillZooms()
{
    m_ui->cboGoZoom->addItem(tr("Keep"), 0.0F);
    const QVector<float> steps = ZoomSteps::OfWheel();
    for (const float step : steps) {
        m_ui->cboGoZoom->addItem(tr("%1%").arg(std::lround(step * 100)), step);
    }
}

void DialogGoTo::OfferNames()
{
    QStringList labels;
    for (const GoTarget& target : qAsConst(m_targets)) {
        labels.append(target.label);
    }
    labels.sort(Qt::CaseInsensitive);
    auto* completer = new QCompleter(labels, this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    m_ui->txtGoName->setCompleter(completer);
}

void DialogGoTo::LetOneWayClearTheOther()
{
    const auto clear = [](QLineEdit* typed, QLineEdit* other) {
        connect(typed, &QLineEdit::textEdited, other, [other](const QString& text) {
            if (!text.isEmpty()) {
                other->clear();
            }
        });
    };
    clear(m_ui->txtGoX, m_ui->txtGoName);
    clear(m_ui->txtGoZ, m_ui->txtGoName);
    clear(m_ui->txtGoName, m_ui->txtGoX);
    clear(m_ui->txtGoName, m_ui->txtGoZ);
}

void DialogGoTo::ShowAnswer()
{
    const Answer answer = Read();
    m_ui->lblGoProblem->setText(answer.problem);
    m_ui->btnOk->setEnabled(answer.place.has_value());
    if (answer.place) {
        const float chosen = m_ui->cboGoZoom->currentData().toFloat();
        const float brought = answer.zoom > 0 ? answer.zoom : m_present.zoom;
        m_place = {*answer.place, chosen > 0 ? chosen : brought};
    }
}

DialogGoTo::Answer DialogGoTo::Read() const
{
    const bool hasMetres =
        !m_ui->txtGoX->text().trimmed().isEmpty() || !m_ui->txtGoZ->text().trimmed().isEmpty();
    const QString name = m_ui->txtGoName->text().trimmed();
    if (!m_scale.IsUsable()) {
        return {{}, tr("There is no map to go to.")};
    }
    if (hasMetres && !name.isEmpty()) {
        return {{}, tr("Type either X and Z or a name.")};
    }
    if (hasMetres) {
        return ReadMetres();
    }
    return name.isEmpty() ? Answer() : ReadName(name);
}

DialogGoTo::Answer DialogGoTo::ReadMetres() const
{
    const struct
    {
        QString axis;
        QString text;
        double most;
    } fields[] = {
        {QStringLiteral("X"), m_ui->txtGoX->text().trimmed(), m_scale.World().width()},
        {QStringLiteral("Z"), m_ui->txtGoZ->text().trimmed(), m_scale.World().height()},
    };
    double metres[2] = {0, 0};
    QString missing;
    for (int i = 0; i < 2; ++i) {
        if (fields[i].text.isEmpty()) {
            missing = tr("Type %1 too.").arg(fields[i].axis);
            continue;
        }
        const QString problem =
            ProblemOf(fields[i].text, fields[i].axis, fields[i].most, metres[i]);
        if (!problem.isEmpty()) {
            return {{}, problem};
        }
    }
    if (!missing.isEmpty()) {
        return {{}, missing};
    }
    return {m_scale.ToScene({metres[0], metres[1]}), {}};
}

DialogGoTo::Answer DialogGoTo::ReadName(const QString& name) const
{
    const QVector<const GoTarget*> targets = TargetsNamed(name);
    if (targets.isEmpty()) {
        return {{}, tr("No territory, layer or bookmark is called \"%1\".").arg(name)};
    }
    if (targets.size() > 1) {
        return {{}, tr("Several things are called \"%1\". Choose one from the list.").arg(name)};
    }
    const GoTarget& target = *targets.first();
    const std::optional<QPointF> place = target.place();
    if (!place) {
        return {{}, tr("\"%1\" is empty, so it has no place.").arg(target.label)};
    }
    return {place, {}, target.zoom};
}

/// By label or by name; upper and lower case count only where they tell several apart.
QVector<const GoTarget*> DialogGoTo::TargetsNamed(const QString& name) const
{
    for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        QVector<const GoTarget*> named;
        for (const GoTarget& target : m_targets) {
            if (target.label.trimmed().compare(name, sensitivity) == 0) {
                return {&target};
            }
            if (target.name.trimmed().compare(name, sensitivity) == 0) {
                named.append(&target);
            }
        }
        if (!named.isEmpty()) {
            return named;
        }
    }
    return {};
}

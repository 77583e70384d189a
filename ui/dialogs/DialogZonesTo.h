#pragma once

#include <QDialog>
#include <QVector>

#include <memory>

class Document;
class Territory;
class Zone;

namespace Ui {
class DialogZonesTo;
}

/// Asks for the territory into which zones are to be moved or copied. Territories are named
/// "Type / Territory", and parts of that are enough. The dialog cannot be accepted without a
/// territory, and says why.
class DialogZonesTo : public QDialog
{
    Q_OBJECT

public:
    /// A territory that holds all the zones is not offered for a move.
    DialogZonesTo(const Document& document, const QVector<Zone*>& zones, bool doesCopy,
                  QWidget* parent = nullptr);
    ~DialogZonesTo() override;
    Q_DISABLE_COPY(DialogZonesTo)

    /// The chosen territory; null while the text names none.
    Territory* Target() const;

    /// Does nothing without a territory.
    void accept() override;

private:
    void FillTargets(const Document& document, const Territory* leftOut);
    /// The indexes of the targets whose names are the text, or else hold it.
    QVector<int> Matches() const;
    void ShowProblem();

    std::unique_ptr<Ui::DialogZonesTo> m_ui;
    QVector<Territory*> m_targets;
};

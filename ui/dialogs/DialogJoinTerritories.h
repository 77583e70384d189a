#pragma once

#include <QDialog>
#include <QVector>

#include <memory>

class Territory;

namespace Ui {
class DialogJoinTerritories;
}

/// Asks which territories are to be joined into another one.
class DialogJoinTerritories : public QDialog
{
    Q_OBJECT

public:
    DialogJoinTerritories(const Territory& target, const QVector<Territory*>& others,
                          QWidget* parent = nullptr);
    ~DialogJoinTerritories() override;
    Q_DISABLE_COPY(DialogJoinTerritories)

    /// The ticked ones.
    QVector<Territory*> Chosen() const;

    /// Does nothing while none is ticked.
    void accept() override;

private:
    std::unique_ptr<Ui::DialogJoinTerritories> m_ui;
    QVector<Territory*> m_others;
};

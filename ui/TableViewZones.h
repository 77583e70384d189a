#pragma once

#include <QTableView>

/// The table of zones. A double click is the owner's; cells are edited with F2.
class TableViewZones : public QTableView
{
    Q_OBJECT

public:
    explicit TableViewZones(QWidget* parent = nullptr);

    /// Room for most columns and some rows.
    QSize sizeHint() const override;

signals:
    /// Ctrl+C, Ctrl+V and Del.
    void CopyWanted();
    void PasteWanted();
    void RemoveWanted();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

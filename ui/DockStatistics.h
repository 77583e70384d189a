#pragma once

#include "ui/NumberRows.h"

#include <QDockWidget>

#include <functional>

class ComboBoxLayers;
class Document;
class NumbersView;
class ProjectNumbers;
class QLabel;
class QPushButton;
class QPushButton;
class QTabWidget;

/// The dock "Numbers": how much layers, flags and zones cover, and how many creatures there are.
/// It follows every edit while it can be seen.
class DockStatistics : public QDockWidget
{
    Q_OBJECT

public:
    /// document, numbers: of the project; both outlive the dock. goTo shows an area of the map, in
    /// scene units; it may not be empty.
    DockStatistics(Document& document, ProjectNumbers& numbers,
                   std::function<void(const QRectF& area)> goTo, QWidget* parent = nullptr);

private:
    struct Table
    {
        NumbersView* view = nullptr;
        QVector<NumberSubject> subjects;
    };

    QWidget* MakeContents();
    QWidget* MakeLayersPage();
    void AddTable(Table& table, const char* name, const QVector<NumbersModel::Column>& columns);
    void SetSeen(bool isSeen);
    void Refresh();
    void Show(Table& table, const NumberRows& rows);
    const NumbersView& Shown() const;
    void ShowSave();
    void ChooseOverlap();
    void ShowOverlap();
    void GoTo(const Table& table, const QModelIndex& index);
    void Save();

    Document& m_document;
    ProjectNumbers& m_numbers;
    std::function<void(const QRectF& area)> m_goTo;
    /// A dock behind another tab is not, and Qt calls it visible.
    bool m_isSeen = false;
    Table m_layers;
    Table m_flags;
    Table m_zones;
    QTabWidget* m_tabs = nullptr;
    QPushButton* m_save = nullptr;
    ComboBoxLayers* m_overlapFirst = nullptr;
    ComboBoxLayers* m_overlapSecond = nullptr;
    QLabel* m_overlap = nullptr;
};

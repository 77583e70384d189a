#pragma once

#include <QObject>
#include <QVector>

#include <functional>

class QGraphicsScene;
class QStandardItemModel;
class QXmlStreamReader;
class QXmlStreamWriter;
class TerritoryType;

/// The territory types of the open project. The top-level rows of its model are the types; the
/// model owns them, and a type dies with its row.
class TerritoryTypeList : public QObject
{
    Q_OBJECT

public:
    explicit TerritoryTypeList(QObject* parent = nullptr);
    ~TerritoryTypeList() override;

    /// For the views.
    QStandardItemModel* model() const { return m_model; }

    bool IsEmpty() const { return Types().isEmpty(); }
    /// By ascending id; rows that are no types are passed over.
    QVector<TerritoryType*> Types() const;
    /// Null when there is none.
    TerritoryType* TypeById(int id) const;

    /// Appends the type and takes it over. False, and nothing changes hands, for null and for a
    /// type that another model or item owns; true without change for one that is in the list
    /// already.
    bool AddType(TerritoryType* type);
    /// Destroys all types.
    void Clear();
    void UpdateVisibility();

    /// What is called when totals of spawn counts may have changed: a zone was added, removed or
    /// counts other creatures now, or rows came or went. One action can bring a call for each of
    /// its zones, so whoever shows totals sums them up once afterwards. Empty for none.
    void SetTotalsCallback(std::function<void()> callback);
    /// Calls it.
    void TotalsChanged() const;

    /// Reads the "territory-type-list" element whose start tag the reader stands on; zones are
    /// added to the scene when there is one. False when the reader has an error; the types that
    /// were complete before it are kept.
    bool Read(QXmlStreamReader& xml, QGraphicsScene* scene);
    /// Nothing for an empty list.
    void Write(QXmlStreamWriter& xml) const;

    /// Write the files of all or of the checked types, by ascending id, up to the first that fails.
    bool ExportAll() const;
    bool ExportChecked() const;

private:
    QStandardItemModel* m_model;
    std::function<void()> m_totalsCallback;
};

#pragma once

#include "app/RowModel.h"

#include <QObject>
#include <QVector>

#include <functional>
#include <memory>
#include <vector>

class QGraphicsScene;
class QXmlStreamReader;
class QXmlStreamWriter;
class TerritoryType;
struct TypeRecord;

/// The territory types of the open project. The top-level rows of its model are the types. The
/// model owns them: removing a row destroys its type.
class TerritoryTypeList : public QObject
{
    Q_OBJECT

public:
    explicit TerritoryTypeList(QObject* parent = nullptr);
    ~TerritoryTypeList() override;

    /// For the views.
    RowModel* model() const { return m_model; }

    bool IsEmpty() const { return Types().isEmpty(); }
    /// By ascending id; other rows are skipped.
    QVector<TerritoryType*> Types() const;

    /// Appends the type and takes ownership. Returns false and takes nothing for null and for a
    /// type that belongs to another model or item. Returns true if the type is already in the list.
    bool AddType(TerritoryType* type);
    /// As AddType, for another place than the end: the type becomes that row, or the last one.
    bool InsertType(int row, std::unique_ptr<TerritoryType> type);
    /// Takes the type out of the list with its territories; null when it is not in it.
    std::unique_ptr<TerritoryType> TakeType(TerritoryType& type);
    /// Destroys all types.
    void Clear();
    void UpdateVisibility();

    /// Sets the function that is called when totals of spawn counts may have changed: a zone was
    /// added or removed or changed its counts, or rows were added or removed. One action may cause
    /// a call for each of its zones, so code that shows totals should sum them up once afterwards.
    /// May be empty.
    void SetTotalsCallback(std::function<void()> callback);
    /// Calls that function.
    void TotalsChanged() const;

    /// Reads the "territory-type-list" element and adds the zones to the scene, if there is one.
    /// The reader must be on the start tag. Returns false if the reader has an error; types that
    /// were complete before the error are kept.
    bool Read(QXmlStreamReader& xml, QGraphicsScene* scene);
    /// What the project's document holds of the types, by ascending id.
    std::vector<TypeRecord> Records() const;
    /// Writes nothing for an empty list.
    void Write(QXmlStreamWriter& xml) const;

    /// Write the files of all or of the checked types, by ascending id, up to the first that fails.
    bool ExportAll() const;
    bool ExportChecked() const;

private:
    bool Insert(int row, TerritoryType* type);

    RowModel* m_model;
    std::function<void()> m_totalsCallback;
};

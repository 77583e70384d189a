#pragma once

#include <QRectF>
#include <QUndoCommand>

class Document;
class Layer;
class QGraphicsScene;
class Territory;
class TerritoryType;

/// The object that an edit is about. The window shows it after undo and redo. At most one of the
/// three is set.
struct EditPlace
{
    EditPlace() = default;
    EditPlace(Layer* aLayer, const QRectF& anArea = {})
        : layer(aLayer)
        , area(anArea)
    {
    }
    EditPlace(Territory* aTerritory, const QRectF& anArea = {})
        : territory(aTerritory)
        , area(anArea)
    {
    }
    EditPlace(TerritoryType* aType, const QRectF& anArea = {})
        : type(aType)
        , area(anArea)
    {
    }

    Layer* layer = nullptr;
    Territory* territory = nullptr;
    TerritoryType* type = nullptr;
    /// Scene units; empty when nothing on the map changed.
    QRectF area;
};

/// One user action that changes the project and can be undone. Document::Do carries it out; each
/// kind is a class in document/edits/.
///
/// An edit points to the objects that it changes. They live as long as it does: the edit that
/// removes an object keeps it.
class Edit : public QUndoCommand
{
public:
    /// text: in the user's words, such as "Paint stroke on Forest".
    explicit Edit(const QString& text);

    /// False when doing it would change nothing; then it is no step.
    virtual bool Changes() const { return true; }
    /// Whether doing it makes the project unsaved. Zones that are nudged by keys do not.
    virtual bool SetsModified() const { return true; }
    virtual EditPlace Place() const { return {}; }

    /// Called when what it stored was dropped. From then on undo and redo of this step do nothing.
    void Forget();
    bool IsForgotten() const { return m_isForgotten; }

    /// Whether the other edit is this one or a part of it.
    virtual bool Holds(const Edit& other) const { return &other == this; }

    void undo() final;
    void redo() final;

protected:
    /// Kinds of edits that can become one step with the edit before.
    enum Kind
    {
        NoKind = -1,
        MoveZonesKind = 1,
        /// The first of as many kinds as there are ChangeValue edits.
        ChangeValueKinds = 100,
    };

    virtual void Do(Document& document) = 0;
    virtual void Undo(Document& document) = 0;
    /// For a Do or an Undo that could not be carried out and left everything as it was. The first
    /// Do of an edit may not fail.
    void Fail() { m_hasFailed = true; }

    /// For edits that consist of others. False when it failed.
    static bool DoPart(Edit& part, Document& document);
    static bool UndoPart(Edit& part, Document& document);
    /// Whether both come from one gesture of the user's, such as one drag of a slider.
    bool IsSameGesture(const Edit& other) const { return m_gesture == other.m_gesture; }

private:
    friend class Document;

    Document* m_document = nullptr;
    int m_gesture = 0;
    bool m_isForgotten = false;
    bool m_hasFailed = false;
};

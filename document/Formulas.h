#pragma once

#include "layers/FormulaFile.h"
#include "layers/FormulaState.h"
#include "layers/raster/MaskFingerprint.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QVector>

#include <functional>
#include <optional>

class Document;
class Layer;

/// The facts about the computed layers of a document: what they were computed from, and what has
/// changed since. The layers hold their codes. The document owns the object. A layer with a code
/// but without facts counts as computed when it is asked about first.
class Formulas : public QObject
{
    Q_OBJECT

public:
    explicit Formulas(Document& document);

    /// The first state of a layer reads its mask and those of its operands, as does the first one
    /// after they changed.
    FormulaState StateOf(const Layer& layer) const;
    /// Reads what states need until isTimeUp says so. Returns whether nothing is left to read.
    bool ReadMasks(const std::function<bool()>& isTimeUp) const;
    /// Whether an operand, or what it is made of, changed since, also for a layer that was edited.
    bool IsStale(const Layer& layer) const;
    /// The formula in words and the state: "Dilation of Lake, 25 m, up to date". The last words are
    /// one of "up to date", "out of date", "edited by hand" and "broken". Empty for layers without
    /// a formula.
    QString Describe(const Layer& layer) const;
    /// Why the layer is broken, for the user; empty when it is not.
    QString WhyBroken(const Layer& layer) const;
    bool IsLive(const Layer& layer) const;
    /// Whether the document has any computed layer.
    bool HasAny() const;
    /// A copy of the present dependencies.
    FormulaGraph Graph() const;

    /// The facts of the layer; nothing when there are none. A layer that follows its operands has
    /// its present facts.
    std::optional<FormulaFacts> FactsOf(const Layer& layer) const;
    /// For edits.
    void SetFacts(const Layer& layer, const std::optional<FormulaFacts>& facts);
    /// The facts of the layer as if it had been computed just now.
    FormulaFacts PresentFacts(const Layer& layer) const;
    /// Whether the pixels of the layer and of its operands are those of its facts.
    bool IsInStep(const Layer& layer) const;
    /// Whether the layer was to be computed when its facts were noted, and nobody changed it since.
    bool IsWaiting(const Layer& layer) const;

    /// The formulas as the project's files hold them. They use the names that a save gives; until
    /// then several layers may have one name.
    FormulaRecords Records() const;
    /// Takes over the formulas of existing layers from a file. fileName: for messages. Logs at most
    /// one line, at the end.
    void Read(const FormulaReading& reading, const QString& fileName);
    /// Call this when something other than pixels, names or rows may have changed a state.
    void NoteChange();
    /// Tells who shows states that they may have changed.
    void TellChanges();

private:
    void Follow(Layer* layer, int aspect, const QRect& rect);
    void Forget();
    const QHash<int, FormulaStatus>& Statuses() const;
    FormulaStatus StatusOf(const Layer& layer, const Formula& formula) const;
    quint64 FingerprintOf(const Layer& layer) const;
    QString NameOf(int id) const;
    QHash<int, QString> NamesInFile() const;
    int IdOf(const QHash<QString, int>& ids, const QString& name);

    Document& m_document;
    QHash<int, FormulaFacts> m_facts;
    /// The fingerprints of layers that formulas need, by id, also of removed layers.
    mutable QHash<int, raster::MaskFingerprint> m_fingerprints;
    /// The names that layers had last, for those that are missing.
    mutable QHash<int, QString> m_names;
    mutable QHash<int, FormulaStatus> m_statuses;
    mutable bool m_areStatusesKnown = false;
    bool m_mayHaveChanged = false;
};

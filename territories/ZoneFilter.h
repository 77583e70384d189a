#pragma once

#include "territories/ZoneTable.h"

#include <QString>
#include <QStringList>
#include <QStringMatcher>

#include <vector>

/// One condition of a filter.
struct FilterTerm
{
    enum Kind
    {
        Word,
        Part,
        Whole,
        Less,
        LessOrEqual,
        Equal,
        MoreOrEqual,
        More,
        Outside,
        Overlap,
    };

    Kind kind = Word;
    /// Meaningful from Part to More.
    ZoneColumn column = ZoneColumn::Type;
    /// Meaningful for Word, Part and Whole.
    QStringMatcher text;
    /// Meaningful from Less to More.
    double number = 0;
};

/// What a text such as `type:deer radius>500 outside` leaves of the table of zones.
///
/// Spaces separate terms, and all terms must hold. Quotes keep spaces together, and "" within them
/// is a quote; a quote that is not closed goes to the end. Case never matters.
///
/// - `word`: a text of the row has the word as a part.
/// - `column:text`: the cell has the text as a part. Cells of numbers are what the file would say.
/// - `column>number`, `<`, `>=`, `<=`, `=`: the number of the cell, as the file would say it.
///   `column=text`: the whole cell is the text.
/// - `outside`: the centre lies outside of the world. In a world without a size no zone does.
/// - `overlap`: the circle touches another one of the same type.
///
/// A term without its value, a comparison with what is no number, and `<` or `>` on a column of
/// texts are unfinished and hide nothing. What names no column is a word as it stands, with its
/// operator, because names may contain operators.
class ZoneFilter
{
public:
    /// Leaves every row.
    ZoneFilter() = default;
    ZoneFilter(const QString& text, const WorldScale& scale);

    /// Whether it leaves every row.
    bool IsEmpty() const { return m_terms.empty(); }
    /// Whether Matches must be told which rows overlap.
    bool AsksForOverlap() const;
    /// isOverlapping: what OverlappingRows says of the row.
    bool Matches(const ZoneRow& row, bool isOverlapping = false) const;
    /// For each row whether it stays. Overlaps are looked for among the rows themselves.
    std::vector<bool> Matching(const std::vector<ZoneRow>& rows) const;

    /// For a text that the user is still typing: the same filter without its last word if no row
    /// holds that word and it begins the name of a column, "outside" or "overlap". So the rows stay
    /// while the user types "radius>500".
    ZoneFilter WhileTyping(const std::vector<ZoneRow>& rows) const;
    /// The terms that hide nothing because they are unfinished, as the user typed them.
    const QStringList& Unfinished() const { return m_unfinished; }

private:
    std::vector<FilterTerm> m_terms;
    QStringList m_unfinished;
    /// Whether the last term is a word that the user may still be typing.
    bool m_endsInWord = false;
    int m_worldWidth = 0;
    int m_worldHeight = 0;
};

/// Whole texts of the filter that go on with what the user has typed, for a list under the line:
/// the last term completed to columns, to names of the rows, or to the values of its column. They
/// need not begin with the same characters, because quotes may be added; a QCompleter must not
/// filter them.
QStringList FilterCompletions(const QString& text, const std::vector<ZoneRow>& rows);

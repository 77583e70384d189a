#include "territories/ZoneFilter.h"

#include "territories/ZoneOverlap.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace {

const QLatin1String OutsideWord("outside");
const QLatin1String OverlapWord("overlap");

bool IsOperator(QChar character)
{
    return character == QLatin1Char(':') || character == QLatin1Char('<') ||
           character == QLatin1Char('>') || character == QLatin1Char('=');
}

bool IsSame(const QString& a, QLatin1String b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

/// A term as the user typed it.
struct Token
{
    /// Without quotes.
    QString text;
    /// The whole text up to its end, and where it starts there.
    int start = 0;
    int end = 0;
    /// The index in text of the first operator that stands outside of quotes; -1 for none.
    int operatorAt = -1;
    bool hasQuotes = false;
    bool isValueQuoted = false;
    /// Whether a space follows.
    bool isEnded = false;

    QString Field() const { return text.left(operatorAt); }
    QString Operator() const
    {
        const bool isLong = text.at(operatorAt) != QLatin1Char(':') &&
                            text.at(operatorAt) != QLatin1Char('=') &&
                            text.midRef(operatorAt + 1, 1) == QLatin1String("=");
        return text.mid(operatorAt, isLong ? 2 : 1);
    }
    QString Value() const { return text.mid(operatorAt + Operator().size()); }
    /// None for words.
    std::optional<ZoneColumn> Column() const
    {
        return operatorAt < 0 ? std::optional<ZoneColumn>() : ZoneColumnNamed(Field());
    }
};

std::vector<Token> Tokens(const QString& text)
{
    std::vector<Token> tokens;
    bool isOpen = false;
    bool isInToken = false;
    for (int i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        if (!isOpen && character.isSpace()) {
            if (isInToken) {
                tokens.back().isEnded = true;
            }
            isInToken = false;
            continue;
        }
        if (!isInToken) {
            isInToken = true;
            tokens.emplace_back();
            tokens.back().start = i;
        }
        Token& token = tokens.back();
        token.end = i + 1;
        if (character != QLatin1Char('"')) {
            if (!isOpen && token.operatorAt < 0 && IsOperator(character)) {
                token.operatorAt = token.text.size();
            }
            token.text += character;
        } else if (isOpen && text.mid(i + 1, 1) == QLatin1String("\"")) {
            token.text += character;
            token.end = ++i + 1;
        } else {
            isOpen = !isOpen;
            token.hasQuotes = true;
            token.isValueQuoted = token.isValueQuoted || token.operatorAt >= 0;
        }
    }
    return tokens;
}

QStringMatcher MatcherOf(const QString& text)
{
    return QStringMatcher(text, Qt::CaseInsensitive);
}

FilterTerm::Kind ComparisonOf(const QString& sign)
{
    if (sign == QLatin1String("<")) {
        return FilterTerm::Less;
    }
    if (sign == QLatin1String("<=")) {
        return FilterTerm::LessOrEqual;
    }
    if (sign == QLatin1String(">")) {
        return FilterTerm::More;
    }
    return sign == QLatin1String(">=") ? FilterTerm::MoreOrEqual : FilterTerm::Equal;
}

/// None for an unfinished term.
std::optional<FilterTerm> FieldTerm(const Token& token, ZoneColumn column)
{
    const QString sign = token.Operator();
    const QString value = token.Value();
    FilterTerm term;
    term.column = column;
    const bool isPart = sign == QLatin1String(":");
    if (isPart || (sign == QLatin1String("=") && !IsNumber(column))) {
        term.kind = isPart ? FilterTerm::Part : FilterTerm::Whole;
        term.text = MatcherOf(value);
        return value.isEmpty() && !token.isValueQuoted ? std::optional<FilterTerm>() : term;
    }
    bool isNumber = false;
    term.kind = ComparisonOf(sign);
    term.number = value.toDouble(&isNumber);
    return isNumber && std::isfinite(term.number) && IsNumber(column) ? term
                                                                      : std::optional<FilterTerm>();
}

FilterTerm WordTerm(const Token& token)
{
    FilterTerm term;
    if (!token.hasQuotes && IsSame(token.text, OutsideWord)) {
        term.kind = FilterTerm::Outside;
    } else if (!token.hasQuotes && IsSame(token.text, OverlapWord)) {
        term.kind = FilterTerm::Overlap;
    } else {
        term.text = MatcherOf(token.text);
    }
    return term;
}

/// The metres, or where their file's digits could decide the comparison with bound, what these say.
double AsFiled(double metres, double bound)
{
    constexpr double digits = 1e-5;
    return std::abs(metres - bound) > digits * std::abs(metres) ? metres
                                                                : MetresText(metres).toDouble();
}

/// Texts of metres have fewer digits than their numbers; other numbers have the same.
bool IsMetres(ZoneColumn column)
{
    return column == ZoneColumn::X || column == ZoneColumn::Z || column == ZoneColumn::Radius;
}

bool HoldsNumber(const FilterTerm& term, const ZoneRow& row)
{
    const double held = NumberAt(row, term.column);
    const double number = IsMetres(term.column) ? AsFiled(held, term.number) : held;
    switch (term.kind) {
    case FilterTerm::Less:
        return number < term.number;
    case FilterTerm::LessOrEqual:
        return number <= term.number;
    case FilterTerm::MoreOrEqual:
        return number >= term.number;
    case FilterTerm::More:
        return number > term.number;
    default:
        return number == term.number;
    }
}

bool IsIn(const QString& text, const QStringMatcher& part)
{
    return part.indexIn(text) >= 0;
}

bool HoldsText(const FilterTerm& term, const ZoneRow& row)
{
    if (term.kind == FilterTerm::Part) {
        return IsIn(CellText(row, term.column), term.text);
    }
    if (term.kind == FilterTerm::Whole) {
        return CellText(row, term.column).compare(term.text.pattern(), Qt::CaseInsensitive) == 0;
    }
    return IsIn(row.type, term.text) || IsIn(row.territory, term.text) ||
           IsIn(CellText(row, ZoneColumn::Usage), term.text) || IsIn(row.problems, term.text);
}

bool IsBetween(double metres, int size)
{
    return AsFiled(metres, 0) >= 0 && AsFiled(metres, size) <= size;
}

QString WithoutHyphens(QString text)
{
    return text.remove(QLatin1Char('-'));
}

/// Whether the user may be about to type a term of another kind.
bool BeginsName(const QString& word)
{
    QStringList names = {OutsideWord, OverlapWord, QStringLiteral("event")};
    for (const ZoneColumn column : ZoneColumns) {
        names.append(WithoutHyphens(Key(column)));
    }
    const QString letters = WithoutHyphens(word);
    return std::any_of(names.cbegin(), names.cend(), [&letters](const QString& name) {
        return name.startsWith(letters, Qt::CaseInsensitive);
    });
}

} // namespace

ZoneFilter::ZoneFilter(const QString& text, const WorldScale& scale)
    : m_worldWidth(scale.worldWidth)
    , m_worldHeight(scale.worldHeight)
{
    const std::vector<Token> tokens = Tokens(text);
    for (const Token& token : tokens) {
        const std::optional<ZoneColumn> column = token.Column();
        const auto term = column ? FieldTerm(token, *column) : WordTerm(token);
        if (term) {
            m_terms.push_back(*term);
        } else {
            m_unfinished.append(text.mid(token.start, token.end - token.start));
        }
        m_endsInWord =
            !column && !token.hasQuotes && !token.isEnded && term && term->kind == FilterTerm::Word;
    }
}

bool ZoneFilter::AsksForOverlap() const
{
    return std::any_of(m_terms.begin(), m_terms.end(),
                       [](const FilterTerm& term) { return term.kind == FilterTerm::Overlap; });
}

bool ZoneFilter::Matches(const ZoneRow& row, bool isOverlapping) const
{
    return std::all_of(m_terms.begin(), m_terms.end(), [&](const FilterTerm& term) {
        switch (term.kind) {
        case FilterTerm::Word:
        case FilterTerm::Part:
        case FilterTerm::Whole:
            return HoldsText(term, row);
        case FilterTerm::Outside:
            return m_worldWidth > 0 && m_worldHeight > 0 &&
                   !(IsBetween(row.circle.x, m_worldWidth) &&
                     IsBetween(row.circle.z, m_worldHeight));
        case FilterTerm::Overlap:
            return isOverlapping;
        default:
            return HoldsNumber(term, row);
        }
    });
}

std::vector<bool> ZoneFilter::Matching(const std::vector<ZoneRow>& rows) const
{
    std::vector<bool> stays =
        AsksForOverlap() ? OverlappingRows(rows) : std::vector<bool>(rows.size(), false);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        stays[i] = Matches(rows[i], stays[i]);
    }
    return stays;
}

ZoneFilter ZoneFilter::WhileTyping(const std::vector<ZoneRow>& rows) const
{
    ZoneFilter filter = *this;
    if (m_endsInWord && BeginsName(m_terms.back().text.pattern()) &&
        std::none_of(rows.begin(), rows.end(),
                     [this](const ZoneRow& row) { return HoldsText(m_terms.back(), row); })) {
        filter.m_terms.pop_back();
        filter.m_endsInWord = false;
    }
    return filter;
}

namespace {

/// The text in quotes if the filter would misread it without them.
QString Quoted(QString text)
{
    const bool isPlain =
        !text.isEmpty() && !IsSame(text, OutsideWord) && !IsSame(text, OverlapWord) &&
        std::none_of(text.cbegin(), text.cend(), [](QChar character) {
            return character.isSpace() || IsOperator(character) || character == QLatin1Char('"');
        });
    if (isPlain) {
        return text;
    }
    const QString quote = QStringLiteral("\"");
    return quote + text.replace(quote, quote + quote) + quote;
}

/// The different texts of the columns that begin so, sorted, up to a number that a list can show.
QStringList ValuesBeginningWith(const QString& beginning, const std::vector<ZoneColumn>& columns,
                                const std::vector<ZoneRow>& rows)
{
    constexpr int limit = 100;
    std::set<QString> values;
    for (const ZoneColumn column : columns) {
        QString before;
        for (const ZoneRow& row : rows) {
            const QString text = CellText(row, column);
            if (text != before && !text.isEmpty() &&
                text.startsWith(beginning, Qt::CaseInsensitive)) {
                values.insert(text);
            }
            before = text;
        }
    }
    QStringList texts;
    for (const QString& value : std::as_const(values)) {
        if (texts.size() < limit) {
            texts.append(Quoted(value));
        }
    }
    return texts;
}

/// What the last term may become.
QStringList TermsBeginningWith(const Token& token, const std::vector<ZoneRow>& rows)
{
    QStringList terms;
    if (const std::optional<ZoneColumn> column = token.Column()) {
        if (!IsNumber(*column)) {
            terms = ValuesBeginningWith(token.Value(), {*column}, rows);
            for (QString& term : terms) {
                term.prepend(Key(*column) + token.Operator());
            }
        }
        return terms;
    }
    if (!token.hasQuotes) {
        for (const ZoneColumn column : ZoneColumns) {
            terms.append(Key(column) + QLatin1Char(IsNumber(column) ? '>' : ':'));
        }
        terms.append({OutsideWord, OverlapWord});
        QStringList fitting;
        for (const QString& term : qAsConst(terms)) {
            if (term.startsWith(token.text, Qt::CaseInsensitive)) {
                fitting.append(term);
            }
        }
        terms = fitting;
    }
    return token.text.isEmpty()
               ? terms
               : terms + ValuesBeginningWith(
                             token.text,
                             {ZoneColumn::Type, ZoneColumn::Territory, ZoneColumn::Usage}, rows);
}

} // namespace

QStringList FilterCompletions(const QString& text, const std::vector<ZoneRow>& rows)
{
    const std::vector<Token> tokens = Tokens(text);
    const bool isNewTerm = tokens.empty() || tokens.back().isEnded;
    const Token last = isNewTerm ? Token() : tokens.back();
    const QString before = isNewTerm ? text : text.left(last.start);
    QStringList texts = TermsBeginningWith(last, rows);
    for (QString& completed : texts) {
        completed.prepend(before);
    }
    texts.removeAll(text);
    return texts;
}

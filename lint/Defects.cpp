// Holds one defect for each of the tools that ./check lints with; it fails when one goes unseen.

#include <QStringList>

class QStandardItem
{
public:
    void setText(const QString& text) { m_text = text; }

private:
    QString m_text;
};

class Layer : public QStandardItem
{
};

// For our own: -Wquillmap-edits.
void Rename(Layer& layer)
{
    layer.setText({});
}

int CountCharacters(const QStringList& texts)
{
    int count = 0;
    int forgotten = 1;        // for the compiler: clang-diagnostic-unused-variable
    const char* none = 0;     // for clang-tidy: modernize-use-nullptr
    for (auto text : texts) { // for clazy: -Wclazy-range-loop-reference
        count += text.size();
    }
    return none ? 0 : count;
}

// For the analyzer: clang-analyzer-core.NullDereference.
int FirstAbove(const int* numbers, int limit)
{
    const int* found = nullptr;
    if (*numbers > limit) {
        found = numbers;
    }
    return *found;
}

#pragma once

#include "document/Problems.h"
#include "document/ProjectNumbers.h"
#include "tests/support/DocumentFixture.h"

#include <QByteArray>
#include <QStringList>

/// A document without a problem, and what checks it: the layers "Forest" and "Lake", and "Deer"
/// with the territory "North" and one zone. A metre is a pixel.
class CheckedDocument : public DocumentFixture
{
public:
    CheckedDocument();

    /// Waits until all is checked. The rules of the findings, sorted.
    QStringList Rules();
    /// The first finding of the rule, which must be there.
    Problem Find(const QString& rule);
    bool Wait();
    /// Settings, layers and territories as a save writes them, and the masks.
    QByteArray Bytes() const;

    Layer* forest = nullptr;
    Layer* lake = nullptr;
    Zone* zone = nullptr;
    ProjectNumbers numbers{document};
    Problems problems{document, numbers};
};

#pragma once

#include "tests/support/TerritoryDocks.h"

#include <QAbstractItemModelTester>

/// Both docks with two types: Deer with the territories North and South of two zones each, and Wolf
/// without territories. A model tester fails the running test if the model breaks the rules of item
/// models.
class TwoTypesFixture : public TerritoryDocks
{
public:
    TwoTypesFixture();

    QString PropsTitle() const;

    TerritoryType* deer;
    TerritoryType* wolf;
    Territory* north;
    Territory* south;

private:
    QAbstractItemModelTester m_tester;
};

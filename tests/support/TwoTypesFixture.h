#pragma once

#include "tests/support/TerritoryDocks.h"

#include <QAbstractItemModelTester>

/// Both docks with two types: Deer with the territories North and South of two zones each, Wolf
/// with none. The model is watched for breaking the rules of item models, which fails the running
/// test.
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

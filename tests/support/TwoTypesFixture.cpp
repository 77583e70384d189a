#include "tests/support/TwoTypesFixture.h"

#include <QGroupBox>
#include <QStandardItemModel>

TwoTypesFixture::TwoTypesFixture()
    : deer(AddType(QStringLiteral("Deer")))
    , wolf(AddType(QStringLiteral("Wolf")))
    , north(AddTerritory(deer, QStringLiteral("North"), 2))
    , south(AddTerritory(deer, QStringLiteral("South"), 2))
    , m_tester(List().model())
{
    Tree().expandAll();
    TakeModified();
}

QString TwoTypesFixture::PropsTitle() const
{
    return Child<QGroupBox>("gboTer")->title();
}

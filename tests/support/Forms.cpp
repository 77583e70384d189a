#include "tests/support/Forms.h"

#include <QPixmap>
#include <QTest>

QObject* FormObject(QObject& root, const QString& name)
{
    if (root.objectName() == name) {
        return &root;
    }
    const QList<QObject*> found = root.findChildren<QObject*>(name);
    return found.size() == 1 ? found.first() : nullptr;
}

void CheckForm(QObject& root, const QString& name, const QString& className,
               const QByteArray& property, const QVariant& value)
{
    const QObject* object = FormObject(root, name);
    QVERIFY2(object, qPrintable(QStringLiteral("There is no one %1").arg(name)));
    QVERIFY2(object->inherits(className.toLatin1()),
             qPrintable(QStringLiteral("%1 is a %2")
                            .arg(name, QLatin1String(object->metaObject()->className()))));
    if (property.isEmpty()) {
        return;
    }
    const QVariant actual = object->property(property);
    QVERIFY2(actual.isValid(),
             qPrintable(QStringLiteral("%1 has no %2").arg(name, QLatin1String(property))));
    QCOMPARE(actual, value);
}

bool ShowsIcon(const QIcon& icon, const QString& path)
{
    const QIcon expected(path);
    if (icon.isNull() || expected.isNull()) {
        return false;
    }
    for (const int size : {16, 24}) {
        const QImage picture = expected.pixmap(size).toImage();
        if (picture.isNull() || icon.pixmap(size).toImage() != picture) {
            return false;
        }
    }
    return true;
}

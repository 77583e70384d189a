#include "tests/support/SessionState.h"

#include "app/ProjectDocument.h"
#include "document/Document.h"

#include <QAbstractButton>
#include <QCryptographicHash>
#include <QLineEdit>
#include <QList>
#include <QTest>
#include <QWidget>
#include <QXmlStreamWriter>

#include <chrono>

qint64 SharedClock()
{
    // On Linux it counts from the start of the machine.
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

QByteArray StateHash(Document& document)
{
    QByteArray text;
    QXmlStreamWriter xml(&text);
    WriteProjectText(xml, {-1,
                           ProjectSettings::Instance(),
                           {},
                           document.Layers().Records(),
                           document.Types().Records()});
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(text);
    const QVector<Layer*> layers = document.Layers().Layers();
    for (const Layer* layer : layers) {
        const QImage& mask = layer->Image();
        for (int y = 0; y < mask.height(); ++y) {
            hash.addData(reinterpret_cast<const char*>(mask.constScanLine(y)), mask.width());
        }
    }
    return hash.result().toHex();
}

QByteArray ToBytes(const SessionLine& line)
{
    return QByteArray::number(line.milliseconds) + ' ' + static_cast<char>(line.moment) + ' ' +
           line.state + ' ' + line.path.toUtf8() + '\n';
}

SessionLine ToSessionLine(const QByteArray& bytes)
{
    const QList<QByteArray> fields = bytes.trimmed().split(' ');
    return {fields.value(0).toLongLong(), static_cast<SessionMoment>(fields.value(1).at(0)),
            QString::fromUtf8(fields.value(3)), fields.value(2)};
}

void AnswerLoad(QWidget& dialog, const QString& path)
{
    if (dialog.inherits("QFileDialog")) {
        dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
        QTest::keyClick(&dialog, Qt::Key_Return);
        return;
    }
    const QList<QAbstractButton*> buttons = dialog.findChildren<QAbstractButton*>();
    for (QAbstractButton* button : buttons) {
        if (button->text().remove(QLatin1Char('&')) == QLatin1String("Yes")) {
            button->click();
            return;
        }
    }
    qFatal("There is no answer to %s.", qPrintable(dialog.windowTitle()));
}

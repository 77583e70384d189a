#include "canvas/MainScene.h"

#include "app/Log.h"
#include "app/ProjectSettings.h"
#include "canvas/OverlayItem.h"
#include "canvas/WorldItem.h"
#include "document/Document.h"
#include "document/edits/BackgroundEdits.h"

#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include <utility>

// The picture behind the layers, and the colour that lies upon it.

void MainScene::ChangeWorld(QString file)
{
    // Opening a pipe would wait for a writer, maybe for ever.
    QImage picture = QFileInfo(file).isFile() ? QImage(file) : QImage();
    if (picture.isNull()) {
        LogError(QStringLiteral("Could not load background image '%1'.").arg(file));
        return;
    }
    const QSize size = ProjectSettings::Instance().LayerSize();
    if (!m_worldItem->Show(std::move(picture), size)) {
        LogError(QStringLiteral("Could not scale background image '%1' to %2x%3.")
                     .arg(file, QString::number(size.width()), QString::number(size.height())));
        return;
    }
    m_overlayItem->Show(m_overlayItem->Color(), size);
    TellWorldChanged();
}

void MainScene::TellWorldChanged() const
{
    if (m_worldChanged) {
        m_worldChanged();
    }
}

void MainScene::PaintWorld(QPainter& painter)
{
    const auto paint = [&painter](auto& item) {
        if (item.isVisible()) {
            QStyleOptionGraphicsItem option;
            option.exposedRect = item.boundingRect();
            painter.setOpacity(item.opacity());
            item.paint(&painter, &option, nullptr);
        }
    };
    paint(*m_worldItem);
    paint(*m_overlayItem);
}

void MainScene::ClearWorld()
{
    m_worldItem->Clear();
    TellWorldChanged();
}

void MainScene::ChangeWorldRGBA(QColor c)
{
    m_overlayItem->Show(QColor(c.rgb()), sceneRect().size().toSize());
    m_overlayItem->setOpacity(c.alphaF());
    TellWorldChanged();
}

void MainScene::ChangeWorldColor(QColor c)
{
    if (m_document) {
        m_document->Do(Edits::SetBackgroundColor(c));
    }
    m_overlayItem->Show(c, sceneRect().size().toSize());
    TellWorldChanged();
}

void MainScene::ChangeWorldAlpha(int alpha, float opacity)
{
    if (m_document) {
        m_document->Do(Edits::SetBackgroundOpacity(alpha));
    }
    m_overlayItem->setOpacity(static_cast<qreal>(opacity));
    TellWorldChanged();
}

void MainScene::ChangeWorldVisibility(bool visible)
{
    m_worldItem->setVisible(visible);
    m_overlayItem->setVisible(visible);
    TellWorldChanged();
}

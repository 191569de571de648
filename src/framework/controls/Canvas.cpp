// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/Canvas.h"

#include "framework/files/FileType.h"
#include "framework/internal/Native.h"
#include "framework/internal/PictureNative.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QUrl>

namespace quilvane {

class Canvas::Area : public QWidget {
public:
    Area(QWidget* parent, Canvas& canvas)
        : QWidget(parent)
        , m_canvas(canvas)
    {
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        if (m_canvas.m_backdrop) {
            QSvgRenderer& renderer = m_canvas.m_backdrop->native().renderer;
            renderer.setAspectRatioMode(Qt::KeepAspectRatio);
            renderer.render(&painter, rect());
        }
        if (hasFocus()) {
            QStyleOptionFocusRect option;
            option.initFrom(this);
            style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
        }
    }

    void dragEnterEvent(QDragEnterEvent* event) override
    {
        if (event->mimeData()->hasUrls())
            event->acceptProposedAction();
    }

    void dropEvent(QDropEvent* event) override
    {
        std::vector<std::optional<std::string>> paths;
        for (const QUrl& url : event->mimeData()->urls())
            paths.push_back(localPath(url));
        event->acceptProposedAction();
        QMetaObject::invokeMethod(
            this, [this, item = DragItem(std::move(paths))] { m_canvas.Drop(item); }, Qt::QueuedConnection);
    }

    void mousePressEvent(QMouseEvent*) override { press(); }

    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return)
            press();
        else
            QWidget::keyPressEvent(event);
    }

private:
    static std::optional<std::string> localPath(const QUrl& url)
    {
        if (url.scheme() != "file")
            return std::nullopt;
        // Not toLocalFile(): names are bytes, and not all are UTF-8.
        return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toUtf8()).toStdString();
    }

    void press()
    {
        if (m_canvas.MouseDown)
            m_canvas.fire("MouseDown", [this] { m_canvas.MouseDown(); });
    }

    Canvas& m_canvas; // outlives this
};

Canvas::Canvas(Window& window, std::string_view name)
    : RectControl(window, name, ControlKind::Canvas)
{
}

Canvas::~Canvas()
{
    deleteWidget();
}

void Canvas::Drop(DragItem item)
{
    if (DropObject)
        fire("DropObject", [&] { DropObject(item); });
}

void Canvas::AcceptFileDrop(std::string_view fileType)
{
    if (native().widget && FileType::named(fileType))
        native().widget->setAcceptDrops(true);
}

void Canvas::setBackdrop(Ref<Picture> picture)
{
    m_backdrop = std::move(picture);
    if (native().widget)
        native().widget->update();
}

void Canvas::makeWidget(Native& native)
{
    native.widget = new Area(native.content, *this);
}

void Canvas::opened()
{
    if (MouseDown && native().widget)
        native().widget->setFocusPolicy(Qt::StrongFocus);
    fire("Open", Open);
}

} // namespace quilvane

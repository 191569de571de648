// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/Canvas.h"

#include "framework/EventGuard.h"
#include "framework/files/FileType.h"
#include "framework/internal/Native.h"
#include "framework/internal/PictureNative.h"
#include "text/mailLink.h"

#include <QAccessibleWidget>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QUrl>

#include <utility>

namespace quilvane {

class Canvas::Area : public QWidget {
public:
    Area(QWidget* parent, Canvas& canvas)
        : QWidget(parent)
        , m_canvas(canvas)
    {
    }

    /// Null if `object` is no Area.
    static QAccessibleInterface* makeAccessible(const QString& className, QObject* object);

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        if (m_canvas.m_backdrop) {
            QSvgRenderer& renderer = m_canvas.m_backdrop->native().renderer;
            renderer.setAspectRatioMode(Qt::KeepAspectRatio);
            renderer.render(&painter, rect());
        }
        if (m_takesDrag) {
            constexpr int width = 3; // logical pixels
            painter.setPen(QPen(
                palette().color(QPalette::Highlight), width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
            painter.drawRect(QRectF(rect()).adjusted(width / 2., width / 2., -width / 2., -width / 2.));
        }
        if (hasFocus()) {
            QStyleOptionFocusRect option;
            option.initFrom(this);
            style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
        }
    }

    void dragEnterEvent(QDragEnterEvent* event) override
    {
        if (localPaths(*event->mimeData()).empty())
            event->ignore();
        else
            answer(*event);
    }

    void dragMoveEvent(QDragMoveEvent* event) override { answer(*event); }

    void dragLeaveEvent(QDragLeaveEvent*) override { showThatDragIsTaken(false); }

    void dropEvent(QDropEvent* event) override
    {
        answer(*event);
        showThatDragIsTaken(false);
        if (!event->isAccepted())
            return;
        QMetaObject::invokeMethod(
            this, [this, item = DragItem(localPaths(*event->mimeData()))] { m_canvas.Drop(item); },
            Qt::QueuedConnection);
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
    class Accessible;

    /// The paths of the dragged files and folders of this machine. The dragged list may also hold comments
    /// and other addresses.
    static std::vector<std::optional<std::string>> localPaths(const QMimeData& dragged)
    {
        std::vector<std::optional<std::string>> paths;
        for (const QUrl& url : dragged.urls()) {
            const bool isHere = url.host().isEmpty() || url.host() == "localhost";
            if (url.scheme() != "file" || !isHere)
                continue;
            // Not toLocalFile(): names are bytes, and not all are UTF-8.
            const std::string path = percentDecoded(url.path(QUrl::FullyEncoded).toStdString());
            if (path.starts_with('/'))
                paths.emplace_back(path);
        }
        return paths;
    }

    /// Accepts the drag, or refuses it while events must wait, so that the user sees at once that a drop
    /// would have no effect.
    void answer(QDropEvent& event)
    {
        // As a copy where that is offered, since after a move the source may delete the file. Not all sources
        // tell what they offer.
        event.setDropAction(
            event.possibleActions().testFlag(Qt::CopyAction) ? Qt::CopyAction : event.proposedAction());
        event.setAccepted(!eventsMustWait());
        showThatDragIsTaken(event.isAccepted());
    }

    void showThatDragIsTaken(bool isTaken)
    {
        if (std::exchange(m_takesDrag, isTaken) != isTaken)
            update();
    }

    void press()
    {
        if (putOff(&m_canvas, [this] { press(); }))
            return;
        if (m_canvas.MouseDown)
            m_canvas.fire("MouseDown", [this] { m_canvas.MouseDown(); });
    }

    Canvas& m_canvas; // outlives this
    bool m_takesDrag = false;
};

/// What a screen reader finds: a button if a press has an effect, else a picture. A canvas without a name is
/// decoration, which screen readers skip.
class Canvas::Area::Accessible : public QAccessibleWidget {
public:
    explicit Accessible(Area& area)
        : QAccessibleWidget(&area)
        , m_area(area)
    {
    }

    QAccessible::Role role() const override
    {
        if (canBePressed())
            return QAccessible::Button;
        return m_area.accessibleName().isEmpty() ? QAccessibleWidget::role() : QAccessible::Graphic;
    }

    QStringList actionNames() const override
    {
        QStringList names = QAccessibleWidget::actionNames();
        if (canBePressed() && m_area.isEnabled())
            names.prepend(pressAction());
        return names;
    }

    void doAction(const QString& name) override
    {
        // Not at once: the screen reader waits for the call to return, and the press may open a dialog.
        if (actionNames().contains(name) && name == pressAction())
            QMetaObject::invokeMethod(
                &m_area, [&area = m_area] { area.press(); }, Qt::QueuedConnection);
        else
            QAccessibleWidget::doAction(name);
    }

private:
    bool canBePressed() const { return bool(m_area.m_canvas.MouseDown); }

    Area& m_area; // outlives this
};

QAccessibleInterface* Canvas::Area::makeAccessible(const QString&, QObject* object)
{
    auto* area = dynamic_cast<Area*>(object);
    return area ? new Accessible(*area) : nullptr;
}

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
    // The drop was accepted before the running handler began.
    if (putOff(this, [this, item] { Drop(item); }))
        return;
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
    QAccessible::installFactory(Area::makeAccessible); // once, however often it is called
    native.widget = new Area(native.content, *this);
}

void Canvas::opened()
{
    if (MouseDown && native().widget)
        native().widget->setFocusPolicy(Qt::StrongFocus);
    fire("Open", Open);
}

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/Canvas.h"

#include "framework/internal/Native.h"
#include "framework/internal/PictureNative.h"

#include <QPainter>

namespace quilvane {

namespace {

class CanvasWidget : public QWidget {
public:
    CanvasWidget(QWidget* parent, const Ref<Picture>& backdrop)
        : QWidget(parent)
        , m_backdrop(backdrop)
    {
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        if (!m_backdrop)
            return;
        QPainter painter(this);
        QSvgRenderer& renderer = m_backdrop->native().renderer;
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        renderer.render(&painter, rect());
    }

private:
    const Ref<Picture>& m_backdrop; // the control's, which outlives this
};

} // namespace

Canvas::Canvas(Window& window, std::string_view name)
    : RectControl(window, name, ControlKind::Canvas)
{
}

Canvas::~Canvas()
{
    deleteWidget();
}

void Canvas::setBackdrop(Ref<Picture> picture)
{
    m_backdrop = std::move(picture);
    if (native().widget)
        native().widget->update();
}

void Canvas::makeWidget(Native& native)
{
    native.widget = new CanvasWidget(native.content, m_backdrop);
}

void Canvas::opened()
{
    fire("Open", Open);
}

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/RectControl.h"

#include "framework/EventGuard.h"
#include "framework/controls/Window.h"
#include "framework/internal/Native.h"
#include "framework/internal/WindowNative.h"
#include "framework/internal/qtText.h"
#include "framework/internal/tooltip.h"

namespace quilvane {

RectControl::RectControl(Window& window, std::string_view name, ControlKind kind)
    : m_window(window)
    , m_native(std::make_unique<Native>())
    , m_name(name)
    , m_kind(kind)
{
    window.add(*this);
}

RectControl::~RectControl()
{
    forgetPutOff(this);
    deleteWidget();
}

void RectControl::deleteWidget()
{
    delete m_native->widget;
    m_native->widget = nullptr;
}

void RectControl::setVisible(bool visible)
{
    m_visible = visible;
    if (!m_native->widget)
        return;
    // Hidden later, so that a control which is shown again at once does not change: the walk hides its
    // progress line for each folder, and a screen reader would be told each time.
    if (visible)
        m_native->widget->show();
    else
        QMetaObject::invokeMethod(
            m_native->widget, [this] { m_native->widget->setVisible(m_visible); }, Qt::QueuedConnection);
}

void RectControl::setEnabled(bool enabled)
{
    m_enabled = enabled;
    if (m_native->widget)
        m_native->widget->setEnabled(enabled);
}

void RectControl::setFocus()
{
    if (m_native->widget)
        m_native->widget->setFocus();
}

void RectControl::setAccessibleName(std::string_view name)
{
    if (m_native->widget)
        m_native->widget->setAccessibleName(toQt(name));
}

void RectControl::setHelpText(std::string_view text)
{
    m_helpText = text;
    if (m_native->widget)
        showHelpText();
}

void RectControl::place(const ControlRow& row)
{
    m_left = row.left;
    m_top = row.top;
    m_width = row.width;
    m_height = row.height;
    m_tabIndex = row.tabIndex;

    const bool parked = row.left + row.width <= 0 || row.top + row.height <= 0;
    if (!parked)
        makeWidget(*m_native);
    if (m_native->widget) {
        m_native->widget->setObjectName(toQt(m_name));
        m_native->widget->setGeometry(
            m_window.native().scaled(QRect(row.left, row.top, row.width, row.height)));
    }
    if (!row.caption.empty())
        setTableCaption(row.caption);
    m_visible = row.visible;
    if (m_native->widget)
        m_native->widget->setVisible(m_visible);
    setEnabled(row.enabled);
}

void RectControl::makeWidget(Native&)
{
}

void RectControl::showHelpText()
{
    QWidget& widget = *m_native->widget;
    widget.setToolTip(tooltip(m_helpText));
    // Only if it has changed: a screen reader is told each time, and the progress is written many times a
    // second.
    if (const QString description = toQt(m_helpText); description != widget.accessibleDescription())
        widget.setAccessibleDescription(description);
}

void RectControl::setTableCaption(std::string_view)
{
}

void RectControl::fire(std::string_view event, const std::function<void()>& handler) const
{
    if (handler)
        runGuarded(m_name + "_" + std::string(event), handler);
}

} // namespace quilvane

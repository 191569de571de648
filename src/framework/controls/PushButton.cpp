// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/PushButton.h"

#include "framework/EventGuard.h"
#include "framework/controls/Window.h"
#include "framework/internal/Native.h"
#include "framework/internal/fitText.h"
#include "framework/internal/qtText.h"

#include <QPushButton>

namespace quilvane {

PushButton::PushButton(Window& window, std::string_view name)
    : RectControl(window, name, ControlKind::PushButton)
{
}

void PushButton::Push()
{
    if (putOff(this, [this] { Push(); }))
        return;
    if (Enabled())
        fire("Action", Action);
}

void PushButton::setDefault()
{
    window().setDefaultButton(*this);
    if (auto* button = qobject_cast<QPushButton*>(native().widget))
        button->setDefault(true);
}

void PushButton::setCancel()
{
    window().setCancelButton(*this);
}

void PushButton::makeWidget(Native& native)
{
    auto* button = new QPushButton(native.content);
    // Return presses the button that has the focus, as Space does.
    button->setAutoDefault(true);
    QObject::connect(button, &QPushButton::clicked, [this] { Push(); });
    native.widget = button;
}

void PushButton::setTableCaption(std::string_view caption)
{
    if (auto* button = qobject_cast<QPushButton*>(native().widget)) {
        button->setText(toQt(caption));
        fitText(*button, button->text(), 8);
    }
}

} // namespace quilvane

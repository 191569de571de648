// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/CheckBox.h"

#include "framework/EventGuard.h"
#include "framework/internal/Native.h"
#include "framework/internal/fitText.h"
#include "framework/internal/qtText.h"

#include <QCheckBox>

namespace quilvane {

CheckBox::CheckBox(Window& window, std::string_view name)
    : RectControl(window, name, ControlKind::CheckBox)
{
}

void CheckBox::setValue(bool value)
{
    if (value == m_value)
        return;
    m_value = value;
    if (auto* box = qobject_cast<QCheckBox*>(native().widget))
        box->setChecked(value);
    fire("Action", Action);
}

void CheckBox::makeWidget(Native& native)
{
    auto* box = new QCheckBox(native.content);
    QObject::connect(box, &QCheckBox::toggled, [this] { toggled(); });
    native.widget = box;
}

void CheckBox::toggled()
{
    if (!putOff(this, [this] { toggled(); }))
        setValue(qobject_cast<QCheckBox*>(native().widget)->isChecked());
}

void CheckBox::setTableCaption(std::string_view caption)
{
    if (auto* box = qobject_cast<QCheckBox*>(native().widget)) {
        box->setText(toQt(caption));
        fitText(*box, box->text(), 22);
    }
}

} // namespace quilvane

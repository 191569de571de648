// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/TextField.h"

#include "framework/internal/Native.h"
#include "framework/internal/qtText.h"

#include <QLineEdit>

#include <limits>
#include <utility>

namespace quilvane {

TextField::TextField(Window& window, std::string_view name)
    : RectControl(window, name, ControlKind::TextField)
{
}

void TextField::setText(std::string text)
{
    if (auto* edit = qobject_cast<QLineEdit*>(native().widget))
        edit->setText(toQt(text)); // comes back through textChanged
    else
        changeText(std::move(text));
}

void TextField::makeWidget(Native& native)
{
    auto* edit = new QLineEdit(native.content);
    edit->setMaxLength(std::numeric_limits<int>::max());
    QObject::connect(
        edit, &QLineEdit::textChanged, [this](const QString& text) { changeText(fromQt(text)); });
    native.widget = edit;
}

void TextField::changeText(std::string text)
{
    if (text == m_text)
        return;
    m_text = std::move(text);
    fire("TextChange", TextChange);
}

} // namespace quilvane

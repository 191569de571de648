// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/TextField.h"

#include "framework/EventGuard.h"
#include "framework/internal/Native.h"
#include "framework/internal/qtText.h"
#include "framework/strings.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>

#include <utility>

namespace quilvane {

namespace {

constexpr int longestInput = 32'767; // characters

} // namespace

class TextField::Edit : public QLineEdit {
public:
    Edit(QWidget* parent, TextField& field)
        : QLineEdit(parent)
        , m_field(field)
    {
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        // A key counts as handled also if the handler fails: it must not press the default button as well.
        bool handled = bool(m_field.KeyDown);
        if (handled)
            m_field.fire("KeyDown", [&] { handled = m_field.KeyDown(characterOf(*event)); });
        if (!handled)
            QLineEdit::keyPressEvent(event);
    }

    void focusOutEvent(QFocusEvent* event) override
    {
        const int start = selectionStart();
        const int length = selectionLength();
        const bool cursorAtStart = cursorPosition() == start;
        QLineEdit::focusOutEvent(event);
        // Qt removes the selection, but the Edit menu needs it when it is opened by the Alt key.
        if (event->reason() == Qt::MenuBarFocusReason && length > 0)
            cursorAtStart ? setSelection(start + length, -length) : setSelection(start, length);
    }

private:
    static std::string characterOf(const QKeyEvent& event)
    {
        if (event.key() == Qt::Key_Return)
            return Chr(13);
        if (event.key() == Qt::Key_Enter)
            return Chr(3);
        return fromQt(event.text());
    }

    TextField& m_field;
};

TextField::TextField(Window& window, std::string_view name)
    : RectControl(window, name, ControlKind::TextField)
{
}

void TextField::setText(std::string text)
{
    auto* edit = qobject_cast<QLineEdit*>(native().widget);
    if (!edit) {
        changeText(std::move(text));
        return;
    }
    const QString shown = toQt(text);
    // Only the user's input has a limit, and a smaller one would cut what still stands there.
    if (shown.size() > edit->maxLength())
        edit->setMaxLength(static_cast<int>(shown.size()));
    edit->setText(shown); // comes back through textChanged
}

void TextField::makeWidget(Native& native)
{
    auto* edit = new Edit(native.content, *this);
    // What the user gives is one line: a list pasted by mistake would take Qt minutes and gigabytes to lay
    // out.
    edit->setMaxLength(longestInput);
    QObject::connect(edit, &QLineEdit::textChanged, [this] { edited(); });
    native.widget = edit;
}

void TextField::edited()
{
    if (!putOff(this, [this] { edited(); }))
        changeText(fromQt(qobject_cast<QLineEdit*>(native().widget)->text()));
}

void TextField::changeText(std::string text)
{
    if (text == m_text)
        return;
    m_text = std::move(text);
    fire("TextChange", TextChange);
}

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/TextField.h"

#include "framework/EventGuard.h"
#include "framework/internal/Native.h"
#include "framework/internal/editCommands.h"
#include "framework/internal/qtText.h"
#include "framework/strings.h"

#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>

#include <algorithm>
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

    /// Shows the program's edit commands. Qt's own menu would ask the clipboard for its text, and so wait for
    /// the program that has filled it.
    void contextMenuEvent(QContextMenuEvent* event) override
    {
        const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
        popUpEditMenu(*this, byKey ? mapToGlobal(cursorRect().bottomLeft()) : event->globalPos());
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
    // The limit is for the user's input: a text set by code may be longer. A smaller limit cuts what is
    // shown, so it has to wait until the text is set.
    if (shown.size() > edit->maxLength())
        edit->setMaxLength(static_cast<int>(shown.size()));
    edit->setText(shown); // comes back through textChanged
    const int limit = std::max(longestInput, static_cast<int>(edit->text().size()));
    if (limit < edit->maxLength())
        edit->setMaxLength(limit);
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

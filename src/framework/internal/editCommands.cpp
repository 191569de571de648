// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/editCommands.h"

#include "framework/Application.h"
#include "framework/controls/MenuBar.h"
#include "framework/internal/MenuItemNative.h"
#include "framework/internal/RowView.h"

#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>

#include <algorithm>
#include <array>

namespace quilvane {

namespace {

struct Command {
    std::string_view itemName;
    bool (*possible)(const QLineEdit&);
    void (*carryOut)(QLineEdit&);
};

bool hasSelection(const QLineEdit& edit)
{
    return edit.hasSelectedText();
}

constexpr std::array commands{
    Command{ "EditUndo", [](const QLineEdit& edit) { return edit.isUndoAvailable(); },
        [](QLineEdit& edit) { edit.undo(); } },
    Command{ "EditCut", hasSelection, [](QLineEdit& edit) { edit.cut(); } },
    Command{ "EditCopy", hasSelection, [](QLineEdit& edit) { edit.copy(); } },
    // Always possible: to ask the clipboard means to wait for the program that has filled it.
    Command{ "EditPaste", [](const QLineEdit&) { return true; }, [](QLineEdit& edit) { edit.paste(); } },
    Command{ "EditClear", hasSelection, [](QLineEdit& edit) { edit.del(); } },
    Command{ "EditSelectAll", [](const QLineEdit& edit) { return !edit.text().isEmpty(); },
        [](QLineEdit& edit) { edit.selectAll(); } },
};

QPointer<QWidget> focusBeforeMenuBar;

/// The control with the focus. If a menu bar has it, reached by the Alt key, the control that had it before.
QWidget* focusedControl()
{
    QWidget* focused = QApplication::focusWidget();
    if (!qobject_cast<QMenuBar*>(focused))
        return focused;
    const bool inSameWindow = focusBeforeMenuBar && focusBeforeMenuBar->window() == focused->window();
    return inSameWindow ? focusBeforeMenuBar.data() : nullptr;
}

const Command* find(std::string_view itemName)
{
    const auto found = std::find_if(commands.begin(), commands.end(),
        [itemName](const Command& command) { return command.itemName == itemName; });
    return found == commands.end() ? nullptr : &*found;
}

bool isForLists(std::string_view itemName)
{
    return itemName == "EditCopy" || itemName == "EditSelectAll";
}

/// The list with the focus if it can carry out this command now. Else null.
RowView* listFor(std::string_view itemName)
{
    auto* list = dynamic_cast<RowView*>(focusedControl());
    const bool serves
        = list && isForLists(itemName) && (itemName == "EditCopy" ? list->hasSelection() : list->hasRows());
    return serves ? list : nullptr;
}

} // namespace

void followFocus()
{
    QObject::connect(qApp, &QApplication::focusChanged, [](QWidget* before, QWidget* now) {
        if (qobject_cast<QMenuBar*>(now) && before && !qobject_cast<QMenuBar*>(before))
            focusBeforeMenuBar = before;
    });
}

void popUpEditMenu(QWidget& control, const QPoint& place)
{
    EnableMenuItems();
    auto* menu = new QMenu(&control);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const bool isTextField = qobject_cast<QLineEdit*>(&control) != nullptr;
    for (const Command& command : commands) {
        if (isTextField || isForLists(command.itemName))
            menu->addAction(&Application::instance().menuBar().Lookup(command.itemName).native().action);
    }
    menu->popup(place);
}

bool isEditCommand(std::string_view itemName)
{
    return find(itemName) != nullptr;
}

bool canEdit(std::string_view itemName)
{
    const Command* command = find(itemName);
    if (const auto* edit = qobject_cast<QLineEdit*>(focusedControl()))
        return command && command->possible(*edit);
    return listFor(itemName) != nullptr;
}

void edit(std::string_view itemName)
{
    const Command* command = find(itemName);
    auto* lineEdit = qobject_cast<QLineEdit*>(focusedControl());
    if (lineEdit && command && command->possible(*lineEdit))
        command->carryOut(*lineEdit);
    else if (RowView* list = listFor(itemName))
        itemName == "EditCopy" ? list->copySelection() : list->selectAll();
}

} // namespace quilvane

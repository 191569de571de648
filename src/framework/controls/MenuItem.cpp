// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/MenuItem.h"

#include "framework/Application.h"
#include "framework/EventGuard.h"
#include "framework/internal/MenuItemNative.h"
#include "framework/internal/qtText.h"
#include "framework/internal/tooltip.h"

namespace quilvane {

MenuItem::MenuItem(std::string_view name, std::string_view text, std::string_view shortcut)
    : m_native(std::make_unique<Native>())
    , m_name(name)
    , m_text(text)
{
    QAction& action = m_native->action;
    action.setObjectName(toQt(name));
    if (text == "-") {
        action.setSeparator(true);
        return;
    }
    action.setText(toQt(text));
    // Qt calls the platform's command key Ctrl.
    action.setShortcut(QKeySequence(toQt(shortcut).replace("Cmd+", "Ctrl+")));
    QObject::connect(&action, &QAction::triggered, [this] { Choose(); });
}

MenuItem::~MenuItem()
{
    forgetPutOff(this);
}

MenuItem& MenuItem::append(std::unique_ptr<MenuItem> child)
{
    m_children.push_back(std::move(child));
    return *m_children.back();
}

void MenuItem::setEnabled(bool enabled)
{
    m_enabled = enabled;
    m_native->action.setEnabled(enabled);
}

void MenuItem::setHelpText(std::string_view text)
{
    m_native->action.setToolTip(tooltip(text));
}

void MenuItem::Choose()
{
    if (putOff(this, [this] { Choose(); }))
        return;
    if (m_enabled)
        Application::instance().chosen(*this);
}

} // namespace quilvane

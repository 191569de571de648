// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/MenuBar.h"

#include "framework/Application.h"
#include "framework/controls/Window.h"
#include "framework/internal/MenuItemNative.h"
#include "framework/internal/WindowNative.h"
#include "framework/internal/qtText.h"

#include <QMenu>
#include <QMenuBar>

#include <stdexcept>

namespace quilvane {

namespace {

MenuItem* find(const std::vector<std::unique_ptr<MenuItem>>& items, std::string_view name)
{
    for (const auto& item : items) {
        if (item->Name() == name)
            return item.get();
        if (MenuItem* below = find(item->children(), name))
            return below;
    }
    return nullptr;
}

} // namespace

MenuBar::MenuBar() = default;

MenuBar::~MenuBar() = default;

MenuItem& MenuBar::Lookup(std::string_view name) const
{
    MenuItem* item = find(m_menus, name);
    if (!item)
        throw std::logic_error("no menu item named " + std::string(name));
    return *item;
}

MenuItem& MenuBar::append(std::unique_ptr<MenuItem> menu)
{
    m_menus.push_back(std::move(menu));
    return *m_menus.back();
}

void MenuBar::attachTo(Window& window)
{
    QMenuBar* bar = window.native().frame->menuBar();
    for (const auto& menu : m_menus) {
        QMenu* shown = bar->addMenu(toQt(menu->Text()));
        shown->setObjectName(toQt(menu->Name()));
        shown->setToolTipsVisible(true);
        QObject::connect(shown, &QMenu::aboutToShow, [] { EnableMenuItems(); });
        MenuItem* quit = nullptr;
        for (const auto& item : menu->children()) {
            if (item->isQuit())
                quit = item.get();
            else
                shown->addAction(&item->native().action);
        }
        if (quit) {
            shown->addSeparator();
            shown->addAction(&quit->native().action);
        }
    }
}

} // namespace quilvane

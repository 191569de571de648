// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// An entry of a menu, or, with children, a menu. Owned by its parent or its MenuBar.
class MenuItem {
public:
    /// `shortcut` as in "Cmd+Q", where Cmd stands for the platform's command key. The text "-" is a
    /// separator; an ampersand in the text precedes the letter that selects the item.
    MenuItem(std::string_view name, std::string_view text, std::string_view shortcut = {});
    virtual ~MenuItem();
    MenuItem(const MenuItem&) = delete;
    MenuItem& operator=(const MenuItem&) = delete;

    MenuItem& append(std::unique_ptr<MenuItem> child);

    const std::string& Name() const { return m_name; }
    const std::string& Text() const { return m_text; }
    const std::vector<std::unique_ptr<MenuItem>>& children() const { return m_children; }

    bool Enabled() const { return m_enabled; }
    void setEnabled(bool enabled);

    /// The item's tooltip.
    void setHelpText(std::string_view text);

    virtual bool isQuit() const { return false; }

    /// Chooses the item as the user would: nothing happens while it is disabled.
    void Choose();

    struct Native;
    Native& native() { return *m_native; }

private:
    std::unique_ptr<Native> m_native;
    std::string m_name;
    std::string m_text;
    std::vector<std::unique_ptr<MenuItem>> m_children;
    bool m_enabled = true;
};

} // namespace quilvane

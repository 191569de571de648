// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quilvane {

class MenuBar;
class MenuItem;

struct VersionData {
    int major = 0;
    int minor = 0;
    int bug = 0;
    int stage = 0;
    int nonRelease = 0;
    std::string shortVersion;
    std::string description;
    std::string legalNotice;
};

/// The program's application object, one a process; the program derives its own.
///
/// Made after a Runtime and before any window. Run() delivers Event_Open and then runs the event loop until
/// Quit().
class Application {
public:
    /// Handles a chosen menu item. The result says whether to call no further handler; it has no effect,
    /// since there is only one.
    using MenuHandler = std::function<bool()>;

    Application();
    virtual ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// The application object. There must be one.
    static Application& instance();

    void setVersionData(VersionData data);
    const VersionData& versionData() const { return m_versionData; }

    void setMenuBar(MenuBar& bar) { m_menuBar = &bar; }
    /// The bar must have been set.
    quilvane::MenuBar& menuBar() const { return *m_menuBar; }
    void addMenuHandler(std::string_view itemName, MenuHandler handler);

    /// Runs the step that makes the first window, delivers Event_Open and runs the event loop. Returns the
    /// process's exit code.
    int Run(const std::function<void()>& lateStartUp);

    /// Closes all windows, each with its closing event, and ends the event loop.
    void Quit();

    /// Delivers all waiting events and all timers that are due. Returns as soon as nothing is left to do,
    /// after `milliseconds` at the latest. After Quit() it ends the handler that has called it.
    static void DoEvents(int milliseconds);

    // To be called by the toolkit only.
    void chosen(MenuItem& item);
    void updateMenus();
    void windowClosed();
    /// Quits if the program was asked to while its windows were only being painted. After Quit() it throws,
    /// to end the handler that has called it: with the windows gone, nobody would see what that does.
    static void endHandlerIfQuitting();
    /// Whether a signal or the desktop has ended the program: nobody may be there to answer a dialog.
    static bool isEndedFromOutside();

protected:
    virtual void Event_Open() { }
    virtual void Event_EnableMenuItems() { }

private:
    struct Native;

    void askedToQuit();
    void autoEnable(MenuItem& item) const;
    const MenuHandler* handlerFor(std::string_view itemName) const;

    VersionData m_versionData;
    quilvane::MenuBar* m_menuBar = nullptr;
    std::vector<std::pair<std::string, MenuHandler>> m_menuHandlers;
    std::unique_ptr<Native> m_native;
    bool m_endedFromOutside = false;
    bool m_mustQuit = false; // asked to while the windows were only being painted
    bool m_quitting = false;
    bool m_closingWindows = false;
};

/// Updates menu items and buttons: enables each item that has a handler, then calls the application's
/// Event_EnableMenuItems().
void EnableMenuItems();

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/Application.h"

#include "framework/EventGuard.h"
#include "framework/controls/MenuBar.h"
#include "framework/controls/Window.h"
#include "framework/internal/QuitSignals.h"
#include "framework/internal/editCommands.h"
#include "framework/internal/qtText.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cassert>

namespace quilvane {

namespace {

Application* theApplication = nullptr;

/// Treats the desktop's request to quit, such as at the end of a session, like the menu item.
class QuitFilter : public QObject {
public:
    explicit QuitFilter(std::function<void()> quit)
        : m_quit(std::move(quit))
    {
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() != QEvent::Quit)
            return false;
        m_quit();
        return true;
    }

private:
    std::function<void()> m_quit;
};

} // namespace

struct Application::Native {
    explicit Native(const std::function<void()>& quit)
        : quitFilter(quit)
        , quitSignals(quit)
    {
    }

    QuitFilter quitFilter;
    QuitSignals quitSignals;
};

Application::Application()
{
    assert(!theApplication);
    theApplication = this;
    m_native = std::make_unique<Native>([this] { askedToQuit(); });
    qApp->installEventFilter(&m_native->quitFilter);
}

Application::~Application()
{
    forgetPutOff(this);
    WindowList::instance().deleteClosed();
    theApplication = nullptr;
}

Application& Application::instance()
{
    assert(theApplication);
    return *theApplication;
}

void Application::setVersionData(VersionData data)
{
    QApplication::setApplicationVersion(toQt(data.shortVersion));
    m_versionData = std::move(data);
}

void Application::addMenuHandler(std::string_view itemName, MenuHandler handler)
{
    m_menuHandlers.emplace_back(itemName, std::move(handler));
}

int Application::Run(const std::function<void()>& lateStartUp)
{
    lateStartUp();
    runGuarded("Event_Open", [this] { Event_Open(); });
    // The program may have been told to quit while a dialog was open during the start.
    return m_quitting ? 0 : QApplication::exec();
}

void Application::Quit()
{
    m_quitting = true;
    m_closingWindows = true;
    WindowList::instance().closeAll();
    m_closingWindows = false;
    QApplication::exit();
}

void Application::askedToQuit()
{
    m_endedFromOutside = true;
    // Not put off while a dialog is open: the dialog ends with the program.
    if (!isOnlyPainting()) {
        Quit();
        return;
    }
    // Both put off and noted: the running handler may end before it checks m_mustQuit.
    putOff(this, [this] { Quit(); });
    m_mustQuit = true;
}

void Application::DoEvents(int milliseconds)
{
    QElapsedTimer elapsed;
    elapsed.start();
    bool somethingDone = true;
    while (somethingDone && elapsed.elapsed() <= milliseconds)
        somethingDone = QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents);
    endHandlerIfQuitting();
}

void Application::endHandlerIfQuitting()
{
    if (!theApplication)
        return;
    Application& self = *theApplication;
    if (std::exchange(self.m_mustQuit, false))
        self.Quit();
    // While windows close, their handlers run to their end.
    if (self.m_quitting && !self.m_closingWindows && handlerDepth() > 0)
        throw QuitUnwinding();
}

bool Application::isEndedFromOutside()
{
    return theApplication && theApplication->m_endedFromOutside;
}

void Application::chosen(MenuItem& item)
{
    if (item.isQuit())
        Quit();
    else if (const MenuHandler* handler = handlerFor(item.Name()))
        runGuarded("_" + item.Name() + "_Action", [handler] { (*handler)(); });
    else
        edit(item.Name());
}

void Application::updateMenus()
{
    // A handler may call this at its end although the program is quitting and no window is left.
    if (m_quitting || putOff(this, [this] { updateMenus(); }))
        return;
    for (const auto& menu : menuBar().menus()) {
        for (const auto& item : menu->children())
            autoEnable(*item);
    }
    runGuarded("Event_EnableMenuItems", [this] { Event_EnableMenuItems(); });
}

void Application::windowClosed()
{
    QTimer::singleShot(0, qApp, [this] {
        // Without a window there is no menu bar, so the user can't open a menu and thereby update the menus.
        // So the update comes now; the program's part of it makes a new main window.
        if (!m_quitting && WindowList::instance().openWindows().empty())
            updateMenus();
    });
}

void Application::autoEnable(MenuItem& item) const
{
    const std::string& name = item.Name();
    if (item.isQuit() || handlerFor(name))
        item.setEnabled(true);
    else
        item.setEnabled(isEditCommand(name) && canEdit(name));
}

const Application::MenuHandler* Application::handlerFor(std::string_view itemName) const
{
    for (const auto& [name, handler] : m_menuHandlers) {
        if (name == itemName)
            return &handler;
    }
    return nullptr;
}

void EnableMenuItems()
{
    Application::instance().updateMenus();
}

} // namespace quilvane

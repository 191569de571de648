// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

#include <memory>
#include <span>
#include <string>
#include <typeindex>
#include <vector>

namespace quilvane {

class MenuBar;
class PushButton;

/// The properties of a window without its controls. Sizes are those of the content without the menu bar, in
/// pixels of the control table.
struct WindowProperties {
    std::string_view title;
    int width, height;
    MenuBar* menuBar = nullptr; // null: the application's
    bool minimizeButton = false;
    bool maximizeButton = false;
    bool resizable = false;
    bool visibleAtStart = true;
};

/// A window of the program.
///
/// The places of its control table are made for a text of 13 pixels. A window is drawn as much larger or
/// smaller as the user's text is when the window is made, and never larger than the screen.
///
/// Made by implicit<W>() or openWindow<W>(): the constructor makes the controls, Layout gives them their
/// places and binds their events, Event_Open runs. Close() hides the window and runs Event_Close. The object
/// and its data are deleted when no handler is running any more, so a handler may close its own window and go
/// on.
class Window {
public:
    Window();
    virtual ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    /// Shows the window, brings it to the front and gives it the keyboard.
    void Show();
    void Close();

    std::string Title() const;

    /// Writes what the window shows, its menu bar included, to a PNG file.
    void savePicture(const std::string& path) const;

    /// Lets a screen reader speak a text soon, wherever the focus is. Of several texts of one handler only
    /// the last one is spoken.
    void Announce(std::string_view text);

    RectControl& control(std::string_view name) const;

    void setDefaultButton(PushButton& button) { m_defaultButton = &button; }
    void setCancelButton(PushButton& button) { m_cancelButton = &button; }
    /// Presses the default or the cancel button, if there is one. Does nothing in a closed window.
    void pressDefault();
    void pressCancel();

    struct Native;
    Native& native() { return *m_native; }

protected:
    virtual void Layout() = 0;
    virtual void Event_Open() { }
    virtual void Event_Close() { }

    // For Layout.
    void setProperties(const WindowProperties& properties);
    /// Gives each control of the table its place and sets the tab order. Later controls lie above earlier
    /// ones. Throws std::logic_error for a row without a control of that name and kind.
    void place(std::span<const ControlRow> table);

private:
    friend class RectControl;
    friend class WindowList;

    void add(RectControl& control);
    void runOpening();
    void showAtStart();

    std::unique_ptr<Native> m_native;
    std::vector<RectControl*> m_controls; // in the order of their creation; they are members of the window
    PushButton* m_defaultButton = nullptr;
    PushButton* m_cancelButton = nullptr;
    bool m_visibleAtStart = true;
    bool m_closed = false;
};

/// The open windows.
class WindowList {
public:
    static WindowList& instance();

    Window& open(std::unique_ptr<Window> window);
    Window& implicitInstance(std::type_index type, std::unique_ptr<Window> (*make)());
    /// Null if there is none.
    Window* findImplicit(std::type_index type) const;
    std::vector<Window*> openWindows() const;

    void closed(Window& window);
    void closeAll();
    /// Deletes the closed windows in the next turn of the event loop in which no handler is running.
    void deleteClosedSoon();
    /// Deletes them now. No handler may be running.
    void deleteClosed();

private:
    struct Entry {
        std::unique_ptr<Window> window;
        std::type_index implicitAs;
    };

    std::vector<Entry> m_open;
    std::vector<std::unique_ptr<Window>> m_closed;
};

/// The implicit instance of a window: the open one, or a new one if there is none.
template <typename W>
W& implicit()
{
    return static_cast<W&>(WindowList::instance().implicitInstance(
        typeid(W), []() -> std::unique_ptr<Window> { return std::make_unique<W>(); }));
}

/// True if the implicit instance exists; unlike implicit() this makes none.
template <typename W>
bool isOpen()
{
    return WindowList::instance().findImplicit(typeid(W)) != nullptr;
}

/// Opens one more window of a kind that has no implicit instance.
template <typename W>
W& openWindow()
{
    return static_cast<W&>(WindowList::instance().open(std::make_unique<W>()));
}

} // namespace quilvane

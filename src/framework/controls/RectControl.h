// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace quilvane {

class Window;

enum class ControlKind {
    Canvas,
    CheckBox,
    HTMLViewer,
    Label,
    Listbox,
    PushButton,
    Slider,
    TextArea,
    TextField,
};

/// One row of a window's control table. Left and top are pixels from the content's top left corner, below the
/// menu bar; a window may be drawn larger or smaller than its table.
struct ControlRow {
    std::string_view name;
    ControlKind kind;
    std::string_view caption;
    int left, top, width, height;
    bool visible, enabled;
    int tabIndex;
};

/// The base class of all controls with a place in a window.
///
/// A control is a member of its window and registers itself there by name. The window's Layout gives it its
/// place from the control table; only then, and only if some part of that place lies inside of the content,
/// does it get a widget. Controls above or left of the content ("parked" ones) are for internal use: they
/// hold their state and fire their events like any other, but neither mouse, keyboard nor screen reader can
/// reach them.
class RectControl {
public:
    RectControl(Window& window, std::string_view name, ControlKind kind);
    virtual ~RectControl();
    RectControl(const RectControl&) = delete;
    RectControl& operator=(const RectControl&) = delete;

    const std::string& Name() const { return m_name; }
    ControlKind Kind() const { return m_kind; }

    /// What was set, not whether the control can be seen: a parked control is visible, too.
    bool Visible() const { return m_visible; }
    /// The control is hidden on the screen in the next turn of the event loop.
    void setVisible(bool visible);

    bool Enabled() const { return m_enabled; }
    void setEnabled(bool enabled);

    int Left() const { return m_left; }
    int Top() const { return m_top; }
    int Width() const { return m_width; }
    int Height() const { return m_height; }
    int TabIndex() const { return m_tabIndex; }

    /// Gives the control the keyboard when its window is shown.
    void setFocus();

    /// What a screen reader speaks for a control that shows no text of its own.
    void setAccessibleName(std::string_view name);

    /// The control's tooltip, and its description for a screen reader. Plain text of one or more lines; long
    /// ones are broken.
    void setHelpText(std::string_view text);

    /// Gives the control its place and its widget. The window calls it once.
    void place(const ControlRow& row);

    struct Native;
    Native& native() { return *m_native; }

protected:
    /// Makes the control's widget in `native.content` and connects its signals. Default: no widget.
    virtual void makeWidget(Native& native);
    /// Shows the caption from the table. Default: shows none.
    virtual void setTableCaption(std::string_view caption);
    /// Shows the help text. Default: as the widget's tooltip and description.
    virtual void showHelpText();
    /// Runs after the placing of all controls of the window.
    virtual void opened() { }

    Window& window() const { return m_window; }
    const std::string& helpText() const { return m_helpText; }

    /// For a control whose widget uses the control's members: to be called in the control's destructor.
    void deleteWidget();

    /// Runs an event's handler, if one is bound, with runGuarded(), under the name "control_event".
    void fire(std::string_view event, const std::function<void()>& handler) const;

private:
    friend class Window;

    Window& m_window;
    std::unique_ptr<Native> m_native;
    std::string m_name;
    std::string m_helpText;
    ControlKind m_kind;
    bool m_visible = true;
    bool m_enabled = true;
    int m_left = 0;
    int m_top = 0;
    int m_width = 0;
    int m_height = 0;
    int m_tabIndex = 0;
};

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Picture.h"
#include "framework/controls/DragItem.h"
#include "framework/controls/RectControl.h"

namespace quilvane {

/// An area that shows a picture, or nothing without one.
class Canvas : public RectControl {
public:
    Canvas(Window& window, std::string_view name);
    ~Canvas() override;

    /// All of the window's controls have their places.
    std::function<void()> Open;

    /// The mouse was pressed on the canvas, or the space bar or Return while it has the keyboard. The result
    /// says whether the program has handled the press; it has no effect.
    std::function<bool()> MouseDown;

    /// Something was dropped on the canvas. Fired in a later turn of the event loop, so that the other
    /// program learns at once that the drop is taken and need not wait for the handler.
    std::function<void(DragItem& item)> DropObject;

    /// Drops something as the user would.
    void Drop(DragItem item);

    /// Lets files be dropped if `fileType` is the name of a declared file type. One such call allows files of
    /// all kinds, and folders: a drag tells only names, and folders have no type.
    void AcceptFileDrop(std::string_view fileType);

    /// A nil picture leaves the canvas empty.
    void setBackdrop(Ref<Picture> picture);

private:
    class Area;

    void makeWidget(Native& native) override;
    void opened() override;

    Ref<Picture> m_backdrop;
};

} // namespace quilvane

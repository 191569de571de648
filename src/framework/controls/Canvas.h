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

    /// The window's controls are all in place.
    std::function<void()> Open;

    /// The mouse was pressed on the canvas, or the space bar or Return while it has the keyboard. The result
    /// says whether the program has dealt with the press; nothing further follows either way.
    std::function<bool()> MouseDown;

    /// Something was dropped on the canvas. It comes from the event loop once the other program has been told
    /// that the drop is taken, so that it need not wait for what the handler does.
    std::function<void(DragItem& item)> DropObject;

    /// Drops something as the user would.
    void Drop(DragItem item);

    /// Lets files be dropped if `fileType` is the name of a declared file type. One such call lets in files
    /// of all kinds, and folders: what is dragged tells its names only, and folders have no type.
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

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Picture.h"
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

    /// A nil picture leaves the canvas empty.
    void setBackdrop(Ref<Picture> picture);

private:
    class Area;

    void makeWidget(Native& native) override;
    void opened() override;

    Ref<Picture> m_backdrop;
};

} // namespace quilvane

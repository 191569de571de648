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

    /// A nil picture leaves the canvas empty.
    void setBackdrop(Ref<Picture> picture);

private:
    void makeWidget(Native& native) override;
    void opened() override;

    Ref<Picture> m_backdrop;
};

} // namespace quilvane

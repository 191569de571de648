// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

namespace quilvane {

class PushButton : public RectControl {
public:
    PushButton(Window& window, std::string_view name);

    /// The button was pressed, by mouse, key, screen reader or Push().
    std::function<void()> Action;

    /// Presses the button as the user would: nothing happens while it is disabled.
    void Push();

    // For Layout: the button that Return presses if no control takes that key, and the one that Escape
    // presses.
    void setDefault();
    void setCancel();

private:
    void makeWidget(Native& native) override;
    void setTableCaption(std::string_view caption) override;
};

} // namespace quilvane

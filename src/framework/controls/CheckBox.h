// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

namespace quilvane {

class CheckBox : public RectControl {
public:
    CheckBox(Window& window, std::string_view name);

    /// The value has changed, by the user or by code.
    std::function<void()> Action;

    bool Value() const { return m_value; }
    /// Fires Action before it returns, if the value is a new one.
    void setValue(bool value);

private:
    void makeWidget(Native& native) override;
    void setTableCaption(std::string_view caption) override;
    void toggled();

    bool m_value = false;
};

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

namespace quilvane {

/// A one-line text field. Outside of the window it has no widget and is a text buffer for any bytes.
class TextField : public RectControl {
public:
    TextField(Window& window, std::string_view name);

    /// The text has changed, by the user or by code.
    std::function<void()> TextChange;

    /// A key was pressed in the field; true if it must not be typed. The key is its character, Chr(13) for
    /// Return and Chr(3) for the Enter key of the numeric pad.
    std::function<bool(const std::string& key)> KeyDown;

    const std::string& Text() const { return m_text; }
    /// Fires TextChange before it returns, if the text is a new one.
    void setText(std::string text);

private:
    void makeWidget(Native& native) override;
    void edited();
    void changeText(std::string text);

    class Edit;

    std::string m_text;
};

} // namespace quilvane

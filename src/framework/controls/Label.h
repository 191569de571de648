// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

#include <cstdint>

namespace quilvane {

class Label : public RectControl {
public:
    Label(Window& window, std::string_view name);

    const std::string& Text() const { return m_text; }
    /// Plain text: markup is shown as it stands, and a line end, as in a file's name, in a
    /// label of one line as a visible sign.
    void setText(std::string_view text);

    /// 0xRRGGBB, as drawn on a light window. On a background on which it could not be read the label takes a
    /// lighter or darker shade of it.
    void setTextColor(std::uint32_t rgb);
    /// Logical pixels.
    void setTextSize(int pixels);
    void setCentred();
    /// The text is broken into lines and begins at the top.
    void setMultiline();

private:
    void makeWidget(Native& native) override;
    void setTableCaption(std::string_view caption) override;

    std::string m_text;
};

} // namespace quilvane

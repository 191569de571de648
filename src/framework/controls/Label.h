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
    /// Pixels of the control table.
    void setTextSize(int pixels);
    /// What is really free for the text, in pixels of the control table: `width`, less than the table's where
    /// another control lies over the label, and `above` it room for a second line.
    void setRoom(int width, int above);
    void setCentred();
    /// The text is broken into lines where it stands in the table and begins at the top.
    void setMultiline();

private:
    void makeWidget(Native& native) override;
    void setTableCaption(std::string_view caption) override;
    /// After the text, where that is cut.
    void showHelpText() override;

    /// Sets the text as large as it fits, from the text's size down, in one line or in as many as there is
    /// room for. What fits in no size is cut in its middle, and a tooltip has it whole.
    void fit();

    std::string m_text;
    int m_textSize = 0; // pixels of the control table; 0 is the window's
    int m_roomWidth = 0; // 0 is the table's
    int m_roomAbove = 0;
    bool m_multiline = false;
    bool m_isCut = false;
};

} // namespace quilvane

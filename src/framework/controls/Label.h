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
    /// Plain text: markup is shown unchanged. In a label of one line a line end, which a file's name may
    /// hold, is shown as a visible sign.
    void setText(std::string_view text);

    /// 0xRRGGBB, for a light window. On a background on which it could not be read the label takes a lighter
    /// or darker shade.
    void setTextColor(std::uint32_t rgb);
    /// Pixels of the control table.
    void setTextSize(int pixels);
    /// The room that is really free for the text, in pixels of the control table: `width`, which is less than
    /// the table's where another control covers the label, and `above` the label, for a second line.
    void setRoom(int width, int above);
    void setCentred();
    /// The text is broken into lines and begins at the top.
    void setMultiline();

private:
    void makeWidget(Native& native) override;
    void setTableCaption(std::string_view caption) override;
    /// If the text is cut, the tooltip begins with the whole text.
    void showHelpText() override;

    /// Shows the text in the largest size in which it fits, at most m_textSize, in one line or in as many as
    /// there is room for. A text that fits in no size is cut in its middle, and the tooltip shows all of it.
    void fit();

    std::string m_text;
    int m_textSize = 0; // pixels of the control table; 0 is the window's
    int m_roomWidth = 0; // 0 is the table's
    int m_roomAbove = 0;
    bool m_multiline = false;
    bool m_isCut = false;
};

} // namespace quilvane

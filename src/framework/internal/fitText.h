// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFontMetrics>
#include <QWidget>

namespace quilvane {

/// Pixels; smaller than that nothing is set.
inline constexpr int smallestTextSize = 9;

/// Sets `widget`'s font smaller, as far as it takes to show `text` in full. The tables' widths were drawn for
/// another font than the desktop's may be. `margin` is what the widget itself takes of its width, in logical
/// pixels.
inline void fitText(QWidget& widget, const QString& text, int margin)
{
    QFont font = widget.font();
    while (font.pixelSize() > smallestTextSize
        && QFontMetrics(font).horizontalAdvance(text) > widget.width() - margin)
        font.setPixelSize(font.pixelSize() - 1);
    widget.setFont(font);
}

} // namespace quilvane

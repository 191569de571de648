// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFontMetrics>
#include <QWidget>

namespace quilvane {

/// Pixels.
inline constexpr int smallestTextSize = 9;

/// Makes `widget`'s font smaller until all of `text` fits, but not below smallestTextSize. The desktop's font
/// may be wider than the one that the tables' widths were made for. `margin` is the width that the widget
/// itself needs, in logical pixels.
inline void fitText(QWidget& widget, const QString& text, int margin)
{
    QFont font = widget.font();
    while (font.pixelSize() > smallestTextSize
        && QFontMetrics(font).horizontalAdvance(text) > widget.width() - margin)
        font.setPixelSize(font.pixelSize() - 1);
    widget.setFont(font);
}

/// The text of a row, shortened to `width`. The domain of an address tells most, so the part before the last
/// @ is cut first.
inline QString shortenedAddress(QString text, const QFontMetrics& metrics, int width)
{
    constexpr qsizetype neverFits = 2000; // characters; to measure more takes time
    const QChar ellipsis(0x2026);
    if (text.size() > neverFits)
        text = text.left(neverFits / 2) + ellipsis + text.right(neverFits / 2);
    if (metrics.horizontalAdvance(text) <= width)
        return text;
    const qsizetype at = text.lastIndexOf(u'@');
    const QString domain = at < 0 ? QString() : text.mid(at);
    const int left = width - metrics.horizontalAdvance(domain);
    if (at < 0 || left < metrics.horizontalAdvance(text.left(1) + ellipsis))
        return metrics.elidedText(text, Qt::ElideMiddle, width);
    return metrics.elidedText(text.left(at), Qt::ElideRight, left) + domain;
}

} // namespace quilvane

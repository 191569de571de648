// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>

class QScreen;

namespace quilvane {

/// The text size in logical pixels for which the windows' tables are made.
inline constexpr int designTextSize = 13;

struct WindowScale {
    double unit; // logical pixels for one of the tables
    bool scrolls; // the content is larger than the screen, and the window scrolls it
};

/// The room on a screen for a window's content and menu bar, without the desktop's panels and the window's
/// decoration. Both are guessed where unknown: the decoration before the window is shown, the panels on some
/// desktops.
QSize roomOnScreen(const QScreen& screen);

/// How large a window of size `design` is drawn for a user whose text is `textSize` logical pixels high, on a
/// screen with `room` for it: in proportion to the text, but not larger than the room. If that made the text
/// unreadable, the window scrolls instead.
WindowScale windowScale(int textSize, const QSize& design, const QSize& room);

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>

class QScreen;

namespace quilvane {

/// The height of the text, in logical pixels, that the windows' tables are made for.
inline constexpr int designTextSize = 13;

struct WindowScale {
    double unit; // logical pixels for one of the tables
    bool scrolls; // the window is larger than the screen and shows a part of itself
};

/// What a screen has for the content of a window: not what the desktop's panels and the window's own
/// decoration take. Nobody tells of the decoration before the window stands, and some desktops not of their
/// panels.
QSize roomOnScreen(const QScreen& screen);

/// How large a window of size `design` is drawn for a user whose text is `textSize` logical pixels high, on a
/// screen with `room` for it: as much larger or smaller as the text is, but not larger than the room; and
/// rather with scroll bars than with a text that can't be read.
WindowScale windowScale(int textSize, const QSize& design, const QSize& room);

} // namespace quilvane

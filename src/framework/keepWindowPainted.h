// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace quilvane {

/// To be called again and again by whatever waits or works for long; as a rule it only looks at the clock.
/// Where the event loop has not turned for so many milliseconds it lets the windows paint and answer the
/// window manager and the accessibility bus. No event reaches the program meanwhile.
///
/// What a window shows must be whole at the call: no list between two states. If the program was asked to
/// quit, this ends the handler that has called it, as Application::DoEvents does. On other threads than the
/// main one, and without a Runtime, it does nothing.
void keepWindowPainted(long milliseconds = 100);

namespace internal {
/// For the toolkit itself: what to call when it is time, on this thread; nullptr for nothing.
void setWindowPainter(void (*paint)());
/// The time to the next painting starts now, of either; the first is for the event loop itself.
void eventLoopTurned();
void windowsWerePainted();
/// In milliseconds, since the event loop turned last.
long timeSinceTurn();
} // namespace internal

} // namespace quilvane

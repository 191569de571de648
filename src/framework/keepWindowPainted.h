// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace quilvane {

/// To be called again and again by code that waits or works for long; usually it only looks at the clock. If
/// the last turn of the event loop and the last painting are at least so many milliseconds ago, it lets the
/// windows paint and answer the window manager and the accessibility bus. No event reaches the program
/// meanwhile.
///
/// What a window shows must be whole at the call: no list between two states. If the program was asked to
/// quit, this ends the handler that has called it, as Application::DoEvents does. On other threads than the
/// main one, and without a Runtime, it does nothing.
void keepWindowPainted(long milliseconds = 100);

namespace internal {
/// To be called by the toolkit only. Sets what keepWindowPainted() calls on this thread; nullptr for nothing.
void setWindowPainter(void (*paint)());
/// Both start the time to the next painting; the first one also starts timeSinceTurn().
void eventLoopTurned();
void windowsWerePainted();
/// In milliseconds, since the last turn of the event loop.
long timeSinceTurn();
} // namespace internal

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/keepWindowPainted.h"

#include <ctime>

namespace quilvane {

namespace {

using Painter = void (*)();

constinit thread_local Painter painter = nullptr; // set on the main thread only
constinit long lastTurn = 0;
constinit long lastPainting = 0;

/// In milliseconds, only as exact as the kernel's tick, but a call takes a few nanoseconds.
long now()
{
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
    return time.tv_sec * 1000 + time.tv_nsec / 1'000'000;
}

} // namespace

void keepWindowPainted(long milliseconds)
{
    if (painter && now() - lastPainting >= milliseconds)
        painter();
}

void internal::setWindowPainter(void (*paint)())
{
    painter = paint;
}

void internal::eventLoopTurned()
{
    lastTurn = lastPainting = now();
}

void internal::windowsWerePainted()
{
    lastPainting = now();
}

long internal::timeSinceTurn()
{
    return now() - lastTurn;
}

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/keepWindowPainted.h"

#include <cstdint>
#include <ctime>

namespace quilvane {

namespace {

using Painter = void (*)();

constexpr std::int64_t paintEvery = 100; // ms

constinit thread_local Painter painter = nullptr; // set on the main thread only
constinit std::int64_t lastPainting = 0;

/// In milliseconds, as exact as the kernel's tick, and so a few nanoseconds' work.
std::int64_t now()
{
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
    return time.tv_sec * 1000 + time.tv_nsec / 1'000'000;
}

} // namespace

void keepWindowPainted()
{
    if (painter && now() - lastPainting >= paintEvery)
        painter();
}

void internal::setWindowPainter(void (*paint)())
{
    painter = paint;
}

void internal::windowsWerePainted()
{
    lastPainting = now();
}

} // namespace quilvane

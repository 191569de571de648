// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/windowScale.h"

#include <QScreen>

#include <algorithm>
#include <cstdlib>

namespace quilvane {

QSize roomOnScreen(const QScreen& screen)
{
    constexpr QSize decoration(10, 40);
    constexpr QSize panel(0, 32);
    QSize room = screen.availableSize() - decoration;
    if (screen.availableSize() == screen.size())
        room -= panel;
    return room;
}

WindowScale windowScale(int textSize, const QSize& design, const QSize& room)
{
    constexpr int leastTextSize = 11;
    const bool asDesigned = std::abs(textSize - designTextSize) <= 1;
    const double wanted = asDesigned ? 1 : double(textSize) / designTextSize;
    const double largest
        = std::min(double(room.width()) / design.width(), double(room.height()) / design.height());
    if (wanted <= largest)
        return { wanted, false };
    if (largest * designTextSize >= leastTextSize)
        return { largest, false };
    return { std::min(wanted, 1.0), true };
}

} // namespace quilvane

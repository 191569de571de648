// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/contrast.h"

#include <QPalette>

#include <algorithm>
#include <cmath>

namespace quilvane {

namespace {

// Relative luminance and contrast ratio as WCAG 2.1 defines them.
double luminance(const QColor& color)
{
    const auto linear = [](float component) {
        const auto channel = double(component);
        return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

} // namespace

double contrast(const QColor& a, const QColor& b)
{
    const auto [darker, lighter] = std::minmax({ luminance(a), luminance(b) });
    return (lighter + 0.05) / (darker + 0.05);
}

QColor readableOn(const QColor& background, QColor color, double leastContrast)
{
    constexpr int step = 4;
    const int direction = luminance(background) < 0.18 ? step : -step;
    while (contrast(background, color) < leastContrast) {
        const int lightness = std::clamp(color.lightness() + direction, 0, 255);
        if (lightness == color.lightness())
            break;
        color.setHsl(color.hslHue(), color.hslSaturation(), lightness);
    }
    return color;
}

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

} // namespace quilvane

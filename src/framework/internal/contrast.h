// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>

class QPalette;

namespace quilvane {

// The smallest contrast ratios that WCAG 2.1, level AA, allows.
inline constexpr double textContrast = 4.5;
inline constexpr double outlineContrast = 3;

double contrast(const QColor& a, const QColor& b);

/// The shade of `color` nearest to it that has at least this contrast ratio to `background`.
QColor readableOn(const QColor& background, QColor color, double leastContrast);

/// Whether these are light texts on dark windows.
bool isDark(const QPalette& palette);

} // namespace quilvane

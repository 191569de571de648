// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/internal/qtText.h"

#include <QTextDocument>

namespace quilvane {

/// Plain text in the form for a tooltip: markup in it is shown unchanged, and long lines are broken.
inline QString tooltip(const QString& text)
{
    return text.isEmpty() ? QString() : Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal);
}

inline QString tooltip(std::string_view text)
{
    return tooltip(toQt(text));
}

} // namespace quilvane

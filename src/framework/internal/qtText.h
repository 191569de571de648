// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace quilvane {

/// Text as the user sees it; bytes that are no UTF-8 become replacement characters.
inline QString toQt(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string fromQt(const QString& text)
{
    return text.toStdString();
}

} // namespace quilvane

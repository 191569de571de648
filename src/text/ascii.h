// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace quilvane {

/// Bytes above 127 equal only themselves.
bool equalsIgnoringCase(std::string_view left, std::string_view right);

} // namespace quilvane

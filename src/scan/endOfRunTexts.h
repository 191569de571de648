// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace quilvane {

/// The message at the end of a run. `matches` is the number of the run's matches, duplicates included.
std::string finishMessage(std::int64_t matches);

/// The text of the label below a list of `rows` rows, at least 1: over an empty list the label is not
/// changed.
std::string totalLabel(std::size_t rows);

} // namespace quilvane

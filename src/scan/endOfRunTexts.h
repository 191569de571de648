// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace quilvane {

/// What a run tells at its end. `matches` counts duplicates too: those of the run, and not the rows that
/// stay.
std::string finishMessage(std::int64_t matches);

/// What the label below the list tells of a list of `rows` rows, which is at least 1: an empty list leaves
/// the label as it is.
std::string totalLabel(std::size_t rows);

} // namespace quilvane

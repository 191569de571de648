// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/Scoped.h"

namespace quilvane {

/// Reads fail at a byte of every file whose path contains a text: a read that would go beyond that byte gives
/// the bytes before it, and the next one fails with EIO.
Scoped failingReads(const std::string& inPath, long atByte);

} // namespace quilvane

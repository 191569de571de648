// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace quilvane {

/// While it exists, reads fail at `atByte` of every file whose path contains `inPath`: a read that would go
/// beyond that byte gives the bytes before it, and the next one fails with EIO.
class FailingReads {
public:
    FailingReads(std::string inPath, long atByte);
    ~FailingReads();
    FailingReads(const FailingReads&) = delete;
    FailingReads& operator=(const FailingReads&) = delete;
};

} // namespace quilvane

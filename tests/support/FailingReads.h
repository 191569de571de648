// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace quilvane {

/// Makes the disk fail, while it lives, at a byte of every file whose path holds a text: a read that would
/// go beyond that byte gives what is before it, and the next one fails with EIO.
class FailingReads {
public:
    FailingReads(std::string inPath, long atByte);
    ~FailingReads();
    FailingReads(const FailingReads&) = delete;
    FailingReads& operator=(const FailingReads&) = delete;
};

} // namespace quilvane

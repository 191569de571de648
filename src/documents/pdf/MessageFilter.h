// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// Collects a library's messages about one document, to be shown to the user. Messages that differ only in
/// their numbers count as one, and their number is limited, since a damaged file may cause millions.
///
/// One for each document: add() each message, take() after each operation.
class MessageFilter {
public:
    void add(std::string_view message);

    /// The messages since the last take, each of longestPdfMessage bytes at most; mostPdfMessages of them in
    /// the life of the filter.
    std::vector<std::string> take();

private:
    std::vector<std::string> m_said; // with # for each number
    std::vector<std::string> m_waiting;
};

} // namespace quilvane

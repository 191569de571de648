// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// What a library says while it reads one document, for a user who must answer each message: those that
/// differ in their numbers only count as one, and a damaged file with millions of messages is cut short.
///
/// One for each document: add() whatever comes, take() after each operation.
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

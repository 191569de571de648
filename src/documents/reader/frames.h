// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace quilvane {

// Messages of any bytes over a stream socket, each behind its length in four bytes, least significant first.

using Deadline = std::chrono::steady_clock::time_point;

/// Refused: the other side announced more than the largest that is taken; nothing useful can follow.
/// Closed: the other side is gone, or the socket is broken.
enum class Transfer { Done, Closed, TooLate, Refused };

/// Deadline::max() waits for ever. A peer that has gone raises no signal.
Transfer sendFrame(int socket, std::string_view frame, Deadline deadline);

/// Replaces `frame` with the next message, of `largest` bytes at most.
Transfer receiveFrame(int socket, std::string& frame, std::size_t largest, Deadline deadline);

} // namespace quilvane

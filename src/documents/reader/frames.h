// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace quilvane {

// Messages of any bytes over a stream socket, each after its length in four bytes, least significant first.

/// Refused: the other side announced more than the largest that is taken; nothing useful can follow.
/// Closed: the other side is gone, or the socket is broken. GivenUp: the wait has returned false.
enum class Transfer { Done, Closed, GivenUp, Refused };

/// Waits until poll's `event` occurs on the socket. Returns false to give the message up.
using SocketWait = std::function<bool(int socket, short event)>;

bool waitForEver(int socket, short event);

/// A peer that has gone raises no signal.
Transfer sendFrame(int socket, std::string_view frame, const SocketWait& wait);

/// Replaces `frame` with the next message, of `largest` bytes at most.
Transfer receiveFrame(int socket, std::string& frame, std::size_t largest, const SocketWait& wait);

// Messages over a socket that keeps them apart. Both functions block, and signals do not interrupt them.

/// `numbers` are descriptors, of which the other side gets copies. False if it is gone.
bool sendMessage(int socket, std::string_view message, std::span<const int> numbers = {});

/// Replaces `message` with the next one, of `largest` bytes at most, and fills `numbers` with the descriptors
/// that came with it, -1 for each that is missing. False at the end, and for a message that does not fit,
/// whose descriptors are closed.
bool receiveMessage(int socket, std::string& message, std::size_t largest, std::span<int> numbers = {});

} // namespace quilvane

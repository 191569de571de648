// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/reader/frames.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <span>

#include <poll.h>
#include <sys/socket.h>

namespace quilvane {

namespace {

constexpr int forEver = -1;

/// For poll: in milliseconds, rounded up so that it does not spin through the last one.
int timeLeft(Deadline deadline)
{
    if (deadline == Deadline::max())
        return forEver;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Deadline::clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, INT32_MAX));
}

/// Calls `transfer`, a send or a receive that never waits, on what is left of `bytes` until nothing is.
template <typename Bytes, typename Function>
Transfer transferAll(int socket, short event, Bytes bytes, Deadline deadline, Function transfer)
{
    while (!bytes.empty()) {
        const ssize_t count = transfer(bytes);
        if (count > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
            return Transfer::Closed;
        } else if (errno == EAGAIN) {
            pollfd ready{ socket, event, 0 };
            if (::poll(&ready, 1, timeLeft(deadline)) == 0)
                return Transfer::TooLate;
        }
    }
    return Transfer::Done;
}

Transfer sendAll(int socket, std::span<const char> bytes, Deadline deadline)
{
    return transferAll(socket, POLLOUT, bytes, deadline, [socket](std::span<const char> rest) {
        return ::send(socket, rest.data(), rest.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    });
}

Transfer receiveAll(int socket, std::span<char> bytes, Deadline deadline)
{
    return transferAll(socket, POLLIN, bytes, deadline,
        [socket](std::span<char> rest) { return ::recv(socket, rest.data(), rest.size(), MSG_DONTWAIT); });
}

} // namespace

Transfer sendFrame(int socket, std::string_view frame, Deadline deadline)
{
    std::array<char, 4> length;
    for (std::size_t i = 0; i < length.size(); ++i)
        length[i] = static_cast<char>(frame.size() >> (8 * i) & 0xFFu);
    const Transfer sent = sendAll(socket, length, deadline);
    return sent == Transfer::Done ? sendAll(socket, frame, deadline) : sent;
}

Transfer receiveFrame(int socket, std::string& frame, std::size_t largest, Deadline deadline)
{
    std::array<char, 4> length;
    const Transfer received = receiveAll(socket, length, deadline);
    if (received != Transfer::Done)
        return received;
    std::size_t size = 0;
    for (std::size_t i = 0; i < length.size(); ++i)
        size |= static_cast<std::size_t>(static_cast<unsigned char>(length[i])) << (8 * i);
    if (size > largest)
        return Transfer::Refused;
    frame.resize(size);
    return receiveAll(socket, frame, deadline);
}

} // namespace quilvane

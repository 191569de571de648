// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/reader/frames.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

namespace quilvane {

namespace {

constexpr std::size_t mostDescriptors = 4;

/// Calls `transfer`, a send or a receive that never waits, on the rest of `bytes` until nothing is left.
template <typename Bytes, typename Function>
Transfer transferAll(int socket, short event, Bytes bytes, const SocketWait& wait, Function transfer)
{
    while (!bytes.empty()) {
        const ssize_t count = transfer(bytes);
        if (count > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
            return Transfer::Closed;
        } else if (errno == EAGAIN) {
            if (!wait(socket, event))
                return Transfer::GivenUp;
        }
    }
    return Transfer::Done;
}

Transfer sendAll(int socket, std::span<const char> bytes, const SocketWait& wait)
{
    return transferAll(socket, POLLOUT, bytes, wait, [socket](std::span<const char> rest) {
        return ::send(socket, rest.data(), rest.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    });
}

Transfer receiveAll(int socket, std::span<char> bytes, const SocketWait& wait)
{
    return transferAll(socket, POLLIN, bytes, wait,
        [socket](std::span<char> rest) { return ::recv(socket, rest.data(), rest.size(), MSG_DONTWAIT); });
}

/// The room for descriptors beside a message, aligned as it must be.
union Ancillary {
    cmsghdr header;
    std::array<char, CMSG_SPACE(mostDescriptors * sizeof(int))> bytes;
};

} // namespace

bool waitForEver(int socket, short event)
{
    pollfd ready{ socket, event, 0 };
    ::poll(&ready, 1, -1);
    return true;
}

Transfer sendFrame(int socket, std::string_view frame, const SocketWait& wait)
{
    std::array<char, 4> length;
    for (std::size_t i = 0; i < length.size(); ++i)
        length[i] = static_cast<char>(frame.size() >> (8 * i) & 0xFFu);
    const Transfer sent = sendAll(socket, length, wait);
    return sent == Transfer::Done ? sendAll(socket, frame, wait) : sent;
}

Transfer receiveFrame(int socket, std::string& frame, std::size_t largest, const SocketWait& wait)
{
    std::array<char, 4> length;
    const Transfer received = receiveAll(socket, length, wait);
    if (received != Transfer::Done)
        return received;
    std::size_t size = 0;
    for (std::size_t i = 0; i < length.size(); ++i)
        size |= static_cast<std::size_t>(static_cast<unsigned char>(length[i])) << (8 * i);
    if (size > largest)
        return Transfer::Refused;
    frame.resize(size);
    return receiveAll(socket, frame, wait);
}

bool sendMessage(int socket, std::string_view message, std::span<const int> numbers)
{
    iovec part{ const_cast<char*>(message.data()), message.size() }; // is not written to
    Ancillary ancillary{};
    msghdr whole{};
    whole.msg_iov = &part;
    whole.msg_iovlen = 1;
    if (!numbers.empty()) {
        whole.msg_control = ancillary.bytes.data();
        whole.msg_controllen = CMSG_SPACE(numbers.size_bytes());
        ancillary.header.cmsg_level = SOL_SOCKET;
        ancillary.header.cmsg_type = SCM_RIGHTS;
        ancillary.header.cmsg_len = CMSG_LEN(numbers.size_bytes());
        std::memcpy(CMSG_DATA(&ancillary.header), numbers.data(), numbers.size_bytes());
    }
    ssize_t sent = 0;
    do
        sent = ::sendmsg(socket, &whole, MSG_NOSIGNAL);
    while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(message.size());
}

bool receiveMessage(int socket, std::string& message, std::size_t largest, std::span<int> numbers)
{
    message.resize(largest);
    iovec part{ message.data(), message.size() };
    Ancillary ancillary{};
    msghdr whole{};
    whole.msg_iov = &part;
    whole.msg_iovlen = 1;
    whole.msg_control = ancillary.bytes.data();
    whole.msg_controllen = ancillary.bytes.size();
    ssize_t received = 0;
    do
        received = ::recvmsg(socket, &whole, MSG_CMSG_CLOEXEC);
    while (received < 0 && errno == EINTR);

    std::fill(numbers.begin(), numbers.end(), -1);
    const bool fits = received > 0 && (whole.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0;
    std::size_t taken = 0;
    for (cmsghdr* header = received < 0 ? nullptr : CMSG_FIRSTHDR(&whole); header;
         header = CMSG_NXTHDR(&whole, header)) {
        if (header->cmsg_level != SOL_SOCKET || header->cmsg_type != SCM_RIGHTS)
            continue;
        const std::size_t count = (header->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        for (std::size_t i = 0; i < count; ++i) {
            int number = -1;
            std::memcpy(&number, CMSG_DATA(header) + i * sizeof number, sizeof number);
            if (fits && taken < numbers.size())
                numbers[taken++] = number;
            else
                ::close(number);
        }
    }
    if (fits)
        message.resize(static_cast<std::size_t>(received));
    return fits;
}

} // namespace quilvane

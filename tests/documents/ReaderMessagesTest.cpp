// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/reader/frames.h"
#include "documents/reader/messages.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quilvane {

namespace {

/// Expects that exactly the message's own bytes decode to it.
template <typename Message, typename Decode>
void expectWholeOnly(const Message& message, Decode decode)
{
    const std::string bytes = encode(message);
    EXPECT_EQ(decode(bytes), message);
    EXPECT_FALSE(decode(bytes + '\0'));
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_FALSE(decode(bytes.substr(0, size))) << size;
}

TEST(ReaderMessages, RefuseMissingAndSurplusBytes)
{
    expectWholeOnly(ReaderGreeting{ "id", "missing" }, decodeGreeting);
    expectWholeOnly(ReaderAnswer{ 7, 70'000 }, decodeAnswer);
    expectWholeOnly(ReaderOrder{ .document = 1,
                        .kind = DocumentKind::Pdf,
                        .memory = std::uint64_t(1) << 40,
                        .documentSeconds = 2,
                        .stepMilliseconds = 3,
                        .offset = 4,
                        .length = UINT64_MAX },
        decodeOrder);
    expectWholeOnly(PdfOpening{ .pageCount = 70'000, .reason = "r" }, decodeOpening);
    expectWholeOnly(PdfEnd{ { "", "one" } }, decodeEnd);
    for (const bool isReadable : { false, true }) {
        const PdfPage page{ isReadable, "text" };
        EXPECT_EQ(decodePage(encode(page)), page);
        EXPECT_FALSE(decodeEnd(encode(page)));
    }
    EXPECT_FALSE(decodePage(encode(PdfEnd{})));
    EXPECT_FALSE(decodePage(""));
    EXPECT_FALSE(decodePage(encode(PdfPage{ false, std::string(longestPdfMessage + 1, 'x') })));
    EXPECT_FALSE(decodeOpening(encode(PdfOpening{ .pageCount = mostPdfPages + 1 })));
    EXPECT_FALSE(decodeEnd(encode(PdfEnd{ std::vector<std::string>(mostPdfMessages + 1) })));
}

/// Gives up after a short time.
bool waitShortly(int socket, short event)
{
    pollfd ready{ socket, event, 0 };
    return ::poll(&ready, 1, 20) > 0;
}

TEST(Frames, TellHowATransferEnded)
{
    std::array<int, 2> sockets{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()), 0);
    std::string frame;
    // More than the socket can hold, so that both sides wait.
    const std::string large(4 << 20, 'x');
    EXPECT_EQ(sendFrame(sockets[0], large, waitShortly), Transfer::GivenUp);
    EXPECT_EQ(receiveFrame(sockets[1], frame, large.size(), waitShortly), Transfer::GivenUp);
    ASSERT_EQ(::send(sockets[1], "\12\0\0\0\12\0", 6, 0), 6); // ten bytes announced, and half a length
    EXPECT_EQ(receiveFrame(sockets[0], frame, 9, waitShortly), Transfer::Refused);
    ::close(sockets[1]);
    EXPECT_EQ(receiveFrame(sockets[0], frame, 9, waitForEver), Transfer::Closed);
    EXPECT_EQ(sendFrame(sockets[0], "into nothing", waitForEver), Transfer::Closed);
    ::close(sockets[0]);
}

TEST(Frames, MessagesCarryDescriptors)
{
    std::array<int, 2> sockets{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets.data()), 0);
    std::string message;
    std::array<int, 2> received{};
    ASSERT_TRUE(sendMessage(sockets[0], "one", std::array{ STDIN_FILENO }));
    ASSERT_TRUE(receiveMessage(sockets[1], message, 3, received));
    EXPECT_EQ(message, "one");
    EXPECT_EQ(::fcntl(received[0], F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(received[1], -1);
    const int firstFree = ::dup(received[0]);
    ::close(firstFree);
    ASSERT_TRUE(sendMessage(sockets[0], "too long", std::array{ STDIN_FILENO }));
    EXPECT_FALSE(receiveMessage(sockets[1], message, 3, received));
    ASSERT_TRUE(sendMessage(sockets[0], "two", std::array{ STDIN_FILENO }));
    EXPECT_TRUE(receiveMessage(sockets[1], message, 3));
    const int stillFree = ::dup(STDIN_FILENO);
    EXPECT_EQ(stillFree, firstFree) << "what nobody wants does not stay open";
    for (const int number : { stillFree, received[0], sockets[0], sockets[1] })
        ::close(number);
    EXPECT_FALSE(sendMessage(sockets[0], "into nothing"));
}

} // namespace

} // namespace quilvane

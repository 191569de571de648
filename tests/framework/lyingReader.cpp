// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Replaces the document reader: sends each document's own bytes as its answer, so that a test can make the
// program receive anything.

#include "documents/reader/buildId.h"
#include "documents/reader/frames.h"
#include "documents/reader/messages.h"

#include <array>
#include <cstdlib>
#include <string>

#include <sys/sendfile.h>
#include <unistd.h>

int main()
{
    using namespace quilvane;
    sendMessage(readerSocket, encode(ReaderGreeting{ buildId() }));
    std::string bytes;
    std::array<int, 2> descriptors{};
    while (receiveMessage(readerSocket, bytes, largestControlMessage, descriptors)) {
        const ReaderOrder order = decodeOrder(bytes).value();
        if (order.action == ReaderOrder::Action::Read) {
            constexpr std::size_t everything = 1 << 30;
            while (::sendfile(descriptors[1], descriptors[0], nullptr, everything) > 0) { }
            for (const int descriptor : descriptors)
                ::close(descriptor);
        } else if (order.action != ReaderOrder::Action::End) {
            sendMessage(readerSocket, encode(ReaderAnswer{ order.document, 0 }));
        }
    }
    return EXIT_SUCCESS;
}

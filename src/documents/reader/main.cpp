// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The process that reads documents for the program. It loads what documents need, and then does nothing but
// fork: each document gets a child of its own, which closes itself in. messages.h describes the protocol.

#include "documents/pdf/PdfDocument.h"
#include "documents/reader/buildId.h"
#include "documents/reader/documentChild.h"
#include "documents/reader/frames.h"
#include "documents/reader/messages.h"
#include "documents/reader/sandbox.h"
#include "text/charset.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quilvane {

namespace {

/// The reader ends after this time without a child: a program that is open all day does not need it all the
/// time.
constexpr std::chrono::milliseconds idleTime = std::chrono::minutes(1);
constexpr pid_t notForked = -1;
constexpr int firstFreeNumber = readerDocument + 1;

/// The work of a new child: waits for an order with its two descriptors, and obeys it. Returns its exit
/// status.
int obeyOne(int socket, const Sandbox& sandbox, pid_t reader)
{
    std::string bytes;
    std::array<int, 2> descriptors{ -1, -1 };
    if (!receiveMessage(socket, bytes, largestControlMessage, descriptors) || descriptors[1] < 0)
        return EXIT_FAILURE;
    const std::optional<ReaderOrder> order = decodeOrder(bytes);
    // To other numbers first: each descriptor may have the number that the other one needs.
    const int document = ::fcntl(descriptors[0], F_DUPFD, firstFreeNumber);
    ::dup2(descriptors[1], readerSocket);
    ::dup2(document, readerDocument);
    ::close_range(firstFreeNumber, ~0u, 0);
    return order ? readDocument(*order, sandbox, reader) : EXIT_FAILURE;
}

class DocumentReader {
public:
    /// Serves until the program closes its side, sends something other than an order, or gives no work for
    /// idleTime. Returns an exit status.
    int serve()
    {
        if (!sendMessage(readerSocket, encode(ReaderGreeting{ buildId(), missingFrom(m_walls) })))
            return EXIT_FAILURE;
        forkSpare();
        std::string bytes;
        std::array<int, 2> descriptors{ -1, -1 };
        while (waitForOrder() && receiveMessage(readerSocket, bytes, largestControlMessage, descriptors)) {
            const std::optional<ReaderOrder> order = decodeOrder(bytes);
            if (!order)
                return EXIT_FAILURE;
            if (order->action == ReaderOrder::Action::Read)
                read(order->document, bytes, descriptors);
            else
                obey(*order);
        }
        return EXIT_SUCCESS;
    }

private:
    bool waitForOrder() const
    {
        pollfd ready{ readerSocket, POLLIN, 0 };
        return ::poll(&ready, 1, m_children.empty() ? static_cast<int>(idleTime.count()) : -1) != 0;
    }

    /// The child of the next document is forked in advance, so that its reading starts at once.
    void read(std::uint32_t document, const std::string& order, const std::array<int, 2>& descriptors)
    {
        if (m_spare == notForked || !sendMessage(m_spareSocket, order, descriptors)) {
            // Something has killed the spare child. This document is not the reason, so another child reads
            // it.
            dropSpare();
            forkSpare();
            sendMessage(m_spareSocket, order, descriptors);
        }
        // Before the next fork, so that no child inherits the descriptors of another one.
        for (const int descriptor : { m_spareSocket, descriptors[0], descriptors[1] })
            ::close(descriptor);
        m_children[document] = m_spare;
        forkSpare();
    }

    void forkSpare()
    {
        std::array<int, 2> pair{ -1, -1 };
        ::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, pair.data());
        const pid_t reader = ::getpid();
        m_spareSocket = pair[0];
        m_spare = ::fork();
        if (m_spare == 0) {
            ::close(m_spareSocket);
            ::close(readerSocket);
            ::_exit(obeyOne(pair[1], m_sandbox, reader)); // without destructors, which would only cost time
        }
        ::close(pair[1]);
    }

    void dropSpare()
    {
        ::close(m_spareSocket);
        if (m_spare != notForked)
            m_ended.push_back(m_spare);
    }

    void obey(const ReaderOrder& order)
    {
        std::erase_if(m_ended, [](pid_t child) { return ::waitpid(child, nullptr, WNOHANG) != 0; });
        switch (order.action) {
        case ReaderOrder::Action::GetCpuTime:
            answer(order.document, cpuTimeOf(order.document));
            break;
        case ReaderOrder::Action::End:
            if (const pid_t child = take(order.document); child != notForked) {
                ::kill(child, SIGKILL);
                m_ended.push_back(child);
            }
            break;
        case ReaderOrder::Action::EndAndTell:
            answer(order.document, end(order.document));
            break;
        case ReaderOrder::Action::Read:
            break;
        }
    }

    std::uint32_t cpuTimeOf(std::uint32_t document) const
    {
        const auto found = m_children.find(document);
        clockid_t clock{};
        timespec time{};
        if (found == m_children.end() || found->second == notForked
            || ::clock_getcpuclockid(found->second, &clock) != 0 || ::clock_gettime(clock, &time) != 0)
            return ReaderAnswer::noChild;
        return static_cast<std::uint32_t>(time.tv_sec * 1000 + time.tv_nsec / 1'000'000);
    }

    pid_t take(std::uint32_t document)
    {
        const auto found = m_children.find(document);
        return found == m_children.end() ? notForked : m_children.extract(found).mapped();
    }

    /// A child that has ended by itself keeps its own exit status.
    std::uint32_t end(std::uint32_t document)
    {
        const pid_t child = take(document);
        if (child == notForked)
            return ReaderAnswer::noChild;
        ::kill(child, SIGKILL);
        int status = 0;
        while (::waitpid(child, &status, 0) < 0 && errno == EINTR) { }
        return static_cast<std::uint32_t>(status);
    }

    static void answer(std::uint32_t document, std::uint32_t value)
    {
        sendMessage(readerSocket, encode(ReaderAnswer{ document, value }));
    }

    const Walls m_walls = availableWalls();
    const Sandbox m_sandbox{ m_walls, readerSocket, readerDocument };
    pid_t m_spare = notForked;
    int m_spareSocket = -1;
    std::map<std::uint32_t, pid_t> m_children;
    std::vector<pid_t> m_ended; // children that were told to end and are not waited for yet
};

/// A document must not see the environment of the user's session.
void forgetEnvironment()
{
    for (char** entry = environ; *entry; ++entry)
        std::memset(*entry, 0, std::strlen(*entry));
    ::clearenv();
}

} // namespace

} // namespace quilvane

int main()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // a reader must not outlive the program
    quilvane::openAllConverters();
    quilvane::warmPdfLibrary();
    quilvane::forgetEnvironment();
    ::_exit(quilvane::DocumentReader().serve());
}

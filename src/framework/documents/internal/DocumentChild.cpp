// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/documents/internal/DocumentChild.h"

#include "documents/reader/frames.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <utility>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace quilvane {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// A PDF file of many pages gets a second more for each MiB that it takes on the disk, up to a minute.
std::chrono::seconds timeFor(DocumentKind kind, int file, const DocumentLimits& limits)
{
    constexpr std::int64_t mostMore = 60;
    constexpr std::int64_t blocksOfMebibyte = 2048;
    struct stat status { };
    if (kind != DocumentKind::Pdf || ::fstat(file, &status) != 0)
        return limits.document;
    return limits.document + std::chrono::seconds(std::min(status.st_blocks / blocksOfMebibyte, mostMore));
}

std::string inSeconds(std::chrono::milliseconds time)
{
    return std::to_string(std::chrono::round<std::chrono::seconds>(time).count()) + " seconds";
}

std::string inMebibytes(std::uint64_t bytes)
{
    return std::to_string(bytes >> 20) + " MiB";
}

} // namespace

DocumentChild::DocumentChild(ReaderOrder order, int file, const DocumentLimits& limits)
    : m_limits(limits)
    , m_reader(ReaderProcess::running())
{
    resume();
    m_limits.document = timeFor(order.kind, file, limits);
    order.memory = m_limits.memory;
    order.documentSeconds = static_cast<std::uint32_t>(m_limits.document.count());
    order.stepMilliseconds = static_cast<std::uint32_t>(m_limits.step.count());
    std::array<int, 2> pair{ -1, -1 };
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()) != 0)
        throw RuntimeException(std::string("The document can't be read: ") + std::strerror(errno) + '.');
    m_socket = FileDescriptor(pair[0]);
    const FileDescriptor theirs(pair[1]);
    m_number = m_reader->read(order, file, theirs.number());
}

DocumentChild::~DocumentChild()
{
    if (!m_hasEnded)
        m_reader->end(m_number);
}

bool DocumentChild::receive(std::string& frame, std::size_t largest, std::string& whyNot)
{
    const Transfer transfer = receiveFrame(m_socket.number(), frame, largest,
        [this](int socket, short event) { return waitFor(socket, event); });
    if (transfer == Transfer::Done) {
        m_hasSent = true;
        return true;
    }
    whyNot = transfer == Transfer::Refused ? refuse() : whyEnded(transfer == Transfer::GivenUp);
    return false;
}

void DocumentChild::resume()
{
    m_lastLook = Clock::now();
}

std::string DocumentChild::refuse()
{
    whyEnded(false);
    return "The document reader broke down.";
}

bool DocumentChild::waitFor(int socket, short event)
{
    for (;;) {
        const auto left = m_lastLook + m_limits.silence - Clock::now();
        if (left > 0ms && waitForReader(socket, event, std::chrono::ceil<std::chrono::milliseconds>(left)))
            return true;
        if (!isAtWork())
            return false;
        m_lastLook = Clock::now();
    }
}

/// Whether it has used a tenth of the processor time that it could have had since the last check. On a busy
/// machine it gets less than all; a child that sleeps uses none. One that waits for a slow disk uses hardly
/// any, but sends a page now and then. So could one that only pretends to read, for which this ends.
bool DocumentChild::isAtWork()
{
    constexpr int leastPart = 10;
    constexpr int mostSlowChecks = 15; // five minutes
    const std::uint32_t worked = m_reader->ask(ReaderOrder::Action::GetCpuTime, m_number);
    const std::uint32_t more = worked - std::exchange(m_worked, worked);
    const bool hasSent = std::exchange(m_hasSent, false);
    return more >= m_limits.silence.count() / leastPart || (hasSent && ++m_slowChecks <= mostSlowChecks);
}

std::string DocumentChild::whyEnded(bool wasIdle)
{
    m_hasEnded = true;
    const int status = static_cast<int>(m_reader->ask(ReaderOrder::Action::EndAndTell, m_number));
    if (wasIdle)
        return "The document reader did almost nothing for " + inSeconds(m_limits.silence) + '.';
    if (WIFEXITED(status) && WEXITSTATUS(status) == readerOutOfMemory)
        return "It needs more than " + inMebibytes(m_limits.memory) + " of memory.";
    const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    if (signal == SIGPROF)
        return "Opening it or reading a page of it takes more than " + inSeconds(m_limits.step) + '.';
    if (signal == SIGXCPU)
        return "It takes more than " + inSeconds(m_limits.document) + '.';
    if (signal != 0)
        return std::string("The document reader broke down: ") + ::strsignal(signal) + '.';
    return "The document reader broke down.";
}

} // namespace quilvane

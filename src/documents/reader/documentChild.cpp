// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/reader/documentChild.h"

#include "documents/documentText.h"
#include "documents/pdf/PdfDocument.h"
#include "documents/reader/frames.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quilvane {

namespace {

using namespace std::chrono_literals;

[[noreturn]] void endOutOfMemory()
{
    ::_exit(readerOutOfMemory);
}

/// Libraries abort when malloc returns null, but also for other reasons.
void onAbort(int)
{
    if (errno == ENOMEM)
        endOutOfMemory();
}

/// The part of the file that is the document. Mapped, so only what is looked at is read, and a file of any
/// size costs no memory. Should the file shrink meanwhile, the child ends by a signal.
std::string_view bytesOf(const ReaderOrder& order)
{
    struct stat status { };
    if (::fstat(readerDocument, &status) != 0 || status.st_size <= 0)
        return {};
    const auto size = static_cast<std::size_t>(status.st_size);
    const void* const bytes = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, readerDocument, 0);
    if (bytes == MAP_FAILED)
        return {};
    return std::string_view(static_cast<const char*>(bytes), size)
        .substr(std::min<std::uint64_t>(order.offset, size), order.length);
}

bool tell(std::string_view frame)
{
    return sendFrame(readerSocket, frame, waitForEver) == Transfer::Done;
}

bool tellWord(std::string_view bytes)
{
    const auto verdict = [](WordVerdict v) { return std::string(1, static_cast<char>(v)); };
    if (bytes.empty())
        return tell(verdict(WordVerdict::Empty));
    const std::optional<std::string> text = documentText(bytes);
    if (!text)
        return tell(verdict(WordVerdict::NoDocument));
    return tell(verdict(WordVerdict::Text)) && tell(std::string_view(*text).substr(0, longestDocumentText));
}

std::string lastOf(const std::vector<std::string>& messages)
{
    return messages.empty() ? std::string() : messages.back();
}

std::chrono::nanoseconds timeWorked()
{
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// The page, with no more text than there is room for. Adds the warnings to `warnings` if it can be read.
PdfPage pageOf(PdfDocument& document, std::uint32_t number, const ReaderOrder& order, std::size_t room,
    std::vector<std::string>& warnings)
{
    limitStep(std::chrono::milliseconds(order.stepMilliseconds));
    std::optional<std::string> text = document.pageText(static_cast<int>(number));
    std::vector<std::string> messages = document.takeMessages();
    PdfPage page{ text.has_value(), (text ? std::move(*text) : lastOf(messages)).substr(0, room) };
    if (page.isReadable)
        std::move(messages.begin(), messages.end(), std::back_inserter(warnings));
    return page;
}

/// Sends all pages without being asked for them.
bool tellPages(PdfDocument& document, std::uint32_t count, const ReaderOrder& order)
{
    PdfEnd end{ document.takeMessages() };
    // The rest of the time is reserved for sending the end, and for the last page.
    const auto timeForPages = std::chrono::seconds(order.documentSeconds) * 4 / 5;
    std::size_t room = longestDocumentText;
    std::uint32_t number = 1;
    for (; number <= count && (number == 1 || timeWorked() < timeForPages); ++number) {
        const PdfPage page = pageOf(document, number, order, room, end.warnings);
        room -= page.text.size();
        if (!tell(encode(page)))
            return false;
    }
    if (!tell(encode(end)))
        return false;
    // Should this end the child, the program has all the rest.
    return number > count || tell(encode(pageOf(document, count, order, room, end.warnings)));
}

bool tellPdf(std::string_view bytes, const ReaderOrder& order)
{
    limitStep(std::chrono::milliseconds(order.stepMilliseconds));
    PdfDocument document(bytes, "/dev/fd/" + std::to_string(readerDocument));
    if (!document.isOpen() || document.isLocked()) {
        const auto outcome = document.isOpen() ? PdfOpening::Outcome::Locked : PdfOpening::Outcome::Damaged;
        return tell(encode(PdfOpening{ .outcome = outcome, .reason = lastOf(document.takeMessages()) }));
    }
    const auto count = std::min(static_cast<std::uint32_t>(document.pageCount()), mostPdfPages);
    return tell(encode(PdfOpening{ .pageCount = count })) && tellPages(document, count, order);
}

} // namespace

int readDocument(const ReaderOrder& order, const Sandbox& sandbox, pid_t reader)
{
    std::set_new_handler(endOutOfMemory);
    std::signal(SIGABRT, onAbort);
    const Allowance allowance{ .memory = order.memory, .seconds = order.documentSeconds };
    if (!sandbox.closeIn(allowance, reader))
        return EXIT_FAILURE;
    const std::string_view bytes = bytesOf(order);
    const bool isTold = order.kind == DocumentKind::Word ? tellWord(bytes) : tellPdf(bytes, order);
    return isTold ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace quilvane

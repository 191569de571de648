// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// The process that reads one PDF document for the program: pdfMessages.h tells what the two say to each
// other.

#include "documents/pdf/MessageFilter.h"
#include "documents/pdf/pageText.h"
#include "documents/reader/frames.h"
#include "documents/reader/pdfMessages.h"

#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include <sys/prctl.h>
#include <unistd.h>

namespace quilvane {

namespace {

using Operation = PdfRequest::Operation;
using Outcome = PdfReply::Outcome;

/// The largest side of a page, in its own units: ISO 32000-1, annex C.
constexpr double largestSide = 14400;
/// The page with all of its surroundings. Text that sticks out of a page is cut off at the border of what is
/// asked for.
const poppler::rectf everywhere(-largestSide, -largestSide, 3 * largestSide, 3 * largestSide);

class PdfReader {
public:
    PdfReply answer(const PdfRequest& request)
    {
        switch (request.operation) {
        case Operation::Open:
            return open(request.password);
        case Operation::EditPage:
            return editPage(request.page);
        case Operation::ExtractText:
            return extractText();
        }
        return {};
    }

private:
    PdfReply open(const std::string& password)
    {
        static const std::string path = "/dev/fd/" + std::to_string(pdfChildDocument);
        m_page.reset();
        m_document.reset(poppler::document::load_from_file(path, password, password));
        if (!m_document)
            return { .outcome = Outcome::Damaged };
        if (m_document->is_locked())
            return { .outcome = Outcome::Locked };
        return { .pageCount = std::max(m_document->pages(), 0) };
    }

    PdfReply editPage(int number)
    {
        m_page.reset(m_document && number > 0 ? m_document->create_page(number - 1) : nullptr);
        return { .outcome = m_page ? Outcome::Done : Outcome::NoSuchPage };
    }

    PdfReply extractText() const
    {
        if (!m_page)
            return { .outcome = Outcome::NoSuchPage };
        // In reading order, words are glued together over hyphens, and addresses arise that nobody wrote.
        const poppler::byte_array text = m_page->text(everywhere, poppler::page::raw_order_layout).to_utf8();
        return { .text = tidyPageText({ text.data(), text.size() }).substr(0, longestPdfText) };
    }

    std::unique_ptr<poppler::document> m_document;
    std::unique_ptr<poppler::page> m_page;
};

/// Called by the library with "poppler/error (12): text", where 12 is a position in the file that there need
/// not be, and a line end comes out as <0a>.
void hear(const std::string& line, void* filter)
{
    constexpr std::string_view separator = ": ";
    constexpr std::string_view lineEnd = "<0a>";
    std::string_view message = line;
    message.remove_prefix(std::min(message.find(separator) + separator.size(), message.size()));
    if (message.ends_with(lineEnd))
        message.remove_suffix(lineEnd.size());
    static_cast<MessageFilter*>(filter)->add(message);
}

/// Until the program closes the socket or says something else than a request. Returns an exit status.
int serve()
{
    MessageFilter messages;
    poppler::set_debug_error_function(hear, &messages);
    PdfReader reader;
    std::string bytes;
    while (receiveFrame(pdfChildSocket, bytes, largestPdfRequest, Deadline::max()) == Transfer::Done) {
        const std::optional<PdfRequest> request = decodeRequest(bytes);
        if (!request)
            return EXIT_FAILURE;
        PdfReply reply = reader.answer(*request);
        reply.messages = messages.take();
        if (sendFrame(pdfChildSocket, encode(reply), Deadline::max()) != Transfer::Done)
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

} // namespace

} // namespace quilvane

namespace {

[[noreturn]] void reportOutOfMemory()
{
    ::_exit(quilvane::pdfChildOutOfMemory);
}

/// The library aborts where malloc gives it nothing; it does so for other reasons, too.
void onAbort(int)
{
    if (errno == ENOMEM)
        reportOutOfMemory();
}

} // namespace

int main()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // a page that never ends must not outlive the program
    std::set_new_handler(reportOutOfMemory);
    std::signal(SIGABRT, onAbort);
    ::_exit(quilvane::serve()); // nothing in the memory is worth taking apart
}

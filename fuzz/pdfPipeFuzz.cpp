// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Bytes that come out of the pipe between the program and the child that reads a PDF document: each side
// refuses them, or takes them for exactly one message. And the text of a page, which the child tidies.

#include "documents/pdf/pageText.h"
#include "documents/reader/pdfMessages.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (const auto request = quilvane::decodeRequest(bytes))
        require(quilvane::encode(*request) == bytes);
    if (const auto reply = quilvane::decodeReply(bytes))
        require(quilvane::encode(*reply) == bytes && bytes.size() <= quilvane::largestPdfReply);
    require(quilvane::tidyPageText(bytes).size() <= bytes.size());
    return 0;
}

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Any bytes as messages between the program and the reader: they must be refused, or decoded as exactly one
// message. Also as the text of a page, which the reader's child tidies.

#include "documents/pdf/pageText.h"
#include "documents/reader/messages.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

template <typename Message>
void requireExact(const std::optional<Message>& message, std::string_view bytes, std::size_t largest)
{
    require(!message || (quilvane::encode(*message) == bytes && bytes.size() <= largest));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    requireExact(quilvane::decodeGreeting(bytes), bytes, quilvane::largestControlMessage);
    requireExact(quilvane::decodeOrder(bytes), bytes, quilvane::largestControlMessage);
    requireExact(quilvane::decodeAnswer(bytes), bytes, quilvane::largestControlMessage);
    requireExact(quilvane::decodeOpening(bytes), bytes, quilvane::largestPdfHead);
    requireExact(quilvane::decodePage(bytes), bytes, bytes.size());
    requireExact(quilvane::decodeEnd(bytes), bytes, quilvane::largestPdfHead);
    require(!quilvane::decodePage(bytes) || !quilvane::decodeEnd(bytes));
    require(quilvane::tidyPageText(bytes).size() <= bytes.size());
    return 0;
}

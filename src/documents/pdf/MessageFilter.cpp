// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "documents/pdf/MessageFilter.h"

#include "documents/reader/messages.h"
#include "text/ascii.h"

#include <algorithm>
#include <utility>

namespace quilvane {

namespace {

std::string withoutNumbers(std::string_view message)
{
    std::string general;
    for (const char c : message) {
        if (!isDigit(c))
            general += c;
        else if (!general.ends_with('#'))
            general += '#';
    }
    return general;
}

} // namespace

void MessageFilter::add(std::string_view message)
{
    if (m_said.size() == mostPdfMessages)
        return;
    message = message.substr(0, longestPdfMessage);
    std::string general = withoutNumbers(message);
    if (std::find(m_said.begin(), m_said.end(), general) != m_said.end())
        return;
    m_said.push_back(std::move(general));
    m_waiting.emplace_back(message);
}

std::vector<std::string> MessageFilter::take()
{
    return std::exchange(m_waiting, {});
}

} // namespace quilvane

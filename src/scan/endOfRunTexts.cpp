// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scan/endOfRunTexts.h"

namespace quilvane {

std::string finishMessage(std::int64_t matches)
{
    if (matches == 0)
        return "Finished searching. No email addresses detected.";
    const char* noun = matches == 1 ? " email" : " emails";
    return "Finished searching. " + std::to_string(matches) + noun + " detected. Duplicates removed.";
}

std::string totalLabel(std::size_t rows)
{
    return "Total: " + std::to_string(rows) + (rows == 1 ? " entry." : " entries.");
}

} // namespace quilvane

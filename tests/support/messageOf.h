// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace quilvane {

/// The message of the exception that `act` throws; "nothing was thrown" if there is none.
template <typename Exception, typename Act>
std::string messageOf(Act act)
{
    try {
        act();
    } catch (const Exception& error) {
        return error.what();
    }
    return "nothing was thrown";
}

} // namespace quilvane

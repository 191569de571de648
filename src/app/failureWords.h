// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace quilvane {

/// What the report of a failure tells after the failure itself: what has ended, and what became of the list.
/// `handlerName` is the handler that failed. Where that is a search of folders or dropped items, what it has
/// found is put into the list first.
std::string failureWords(const std::string& handlerName);

} // namespace quilvane

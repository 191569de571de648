// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quilvane {

enum class BenchText {
    /// Sentences with an address every 2 KB.
    Prose,
    /// Lines of 80 bytes with an address in each. About one in five is a duplicate, some in another case.
    Contacts,
    /// a.a.a. and so on, without an '@'.
    DotsOnly,
    /// a@a@a@ and so on.
    AtsOnly,
    /// a@b.c1.c1.c1 and so on: no label can be the last.
    DigitLabels,
    /// (a.)^n@(b.)^n: long runs on both sides of one '@'.
    LongRuns,
};

/// Nothing for an unknown name.
std::optional<BenchText> benchTextNamed(std::string_view name);
std::string_view nameOf(BenchText kind);

/// A text of exactly so many bytes; the same one in every call.
std::string makeBenchText(BenchText kind, std::size_t bytes);

} // namespace quilvane

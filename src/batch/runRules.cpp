// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/runRules.h"

#include "framework/regex/RegEx.h"
#include "framework/strings.h"

#include <array>
#include <cmath>
#include <limits>

namespace quilvane {

namespace {

constexpr std::array searchFolderNames{ "\\.txt", "\\.csv", "\\.doc" };
constexpr std::array secondEntryNames{ ".txt", ".pdf", ".pdf", ".docx" };
constexpr std::array droppedFolderNames{ "\\.txt", "\\.csv", "\\.pdf", "\\.doc" };

} // namespace

const RunRules searchFolderRules{ .listedNames = searchFolderNames,
    .leftOut = lockFilePattern,
    .walksEveryFolder = false,
    .asksAgain = true,
    .firstNumber = 1 };

const RunRules secondEntryRules{ .listedNames = secondEntryNames,
    .leftOut = nullptr,
    .walksEveryFolder = true,
    .asksAgain = false,
    .firstNumber = 0 };

const RunRules droppedFolderRules{ .listedNames = droppedFolderNames,
    .leftOut = nullptr,
    .walksEveryFolder = false,
    .asksAgain = false,
    .firstNumber = 1 };

bool nameHas(const char* pattern, std::string_view name)
{
    RegEx expression;
    expression.setSearchPattern(pattern);
    return expression.matches(name);
}

std::string lastExtension(std::string_view name)
{
    return "." + Split(name, ".").back();
}

std::int64_t progressValue(std::size_t index, std::size_t count)
{
    const double value = (double(index) + 1) / (double(count) - 1) * 65536.0;
    return std::isfinite(value) ? std::int64_t(value) : std::numeric_limits<std::int64_t>::min();
}

std::string searchingText(std::size_t number, std::size_t count, std::string_view name)
{
    return "Searching " + Str(number) + " of " + Str(count) + ": " + std::string(name);
}

} // namespace quilvane

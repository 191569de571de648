// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/RowPlace.h"

#include <algorithm>

namespace quilvane {

void RowPlace::retain(std::size_t first, std::span<const unsigned char> stays)
{
    std::vector<std::size_t*> borders{ &top };
    if (current != none)
        borders.push_back(&current);
    for (RowRange& range : selected) {
        borders.push_back(&range.first);
        borders.push_back(&range.end);
    }
    std::sort(
        borders.begin(), borders.end(), [](const std::size_t* a, const std::size_t* b) { return *a < *b; });

    // A border moves up by the number of removed rows before it; each row is looked at once.
    std::size_t looked = first;
    std::size_t stayed = first;
    for (std::size_t* border : borders) {
        const std::size_t place = std::min(*border, first + stays.size());
        if (place <= first)
            continue;
        const std::span<const unsigned char> between = stays.subspan(looked - first, place - looked);
        const auto gone = std::count(between.begin(), between.end(), static_cast<unsigned char>(0));
        stayed += between.size() - static_cast<std::size_t>(gone);
        looked = place;
        *border = stayed;
    }
    tidy();
}

void RowPlace::truncate(std::size_t count)
{
    top = std::min(top, count);
    if (current != none)
        current = std::min(current, count);
    for (RowRange& range : selected)
        range = { std::min(range.first, count), std::min(range.end, count) };
    tidy();
}

std::size_t RowPlace::selectedCount() const
{
    std::size_t count = 0;
    for (const RowRange& range : selected)
        count += range.end - range.first;
    return count;
}

void RowPlace::tidy()
{
    std::vector<RowRange> tidied;
    for (const RowRange& range : selected) {
        if (range.first == range.end)
            continue;
        if (!tidied.empty() && tidied.back().end == range.first)
            tidied.back().end = range.end;
        else
            tidied.push_back(range);
    }
    selected = std::move(tidied);
}

} // namespace quilvane

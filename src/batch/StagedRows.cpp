// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "batch/StagedRows.h"

#include "framework/keepWindowPainted.h"

#include <algorithm>
#include <utility>

namespace quilvane {

void StagedRows::limitDuplicates()
{
    constexpr std::size_t few = std::size_t(1) << 22; // rows; some 100 MB
    const std::size_t newRows = m_rows.size() - m_index.knownRows();
    if (newRows > std::max(few, m_index.knownRows()))
        removeDuplicates();
}

std::size_t StagedRows::beginFlush()
{
    removeDuplicates();
    return std::exchange(m_flushed, m_rows.size());
}

RowStore StagedRows::release(DuplicateIndex& index)
{
    index = std::exchange(m_index, DuplicateIndex());
    RowStore rows = std::exchange(m_rows, {});
    clear();
    return rows;
}

void StagedRows::clear()
{
    m_rows.clear();
    m_index.forget();
    m_flushed = 0;
}

void StagedRows::removeDuplicates()
{
    DuplicateIndex::Pass pass(m_index, m_rows.size(), [this](std::size_t row) { return m_rows[row]; });
    while (pass.step())
        keepWindowPainted();
    try {
        m_rows.retain(pass.firstRow(), pass.stays());
    } catch (...) {
        m_index.forget();
        throw;
    }
}

} // namespace quilvane

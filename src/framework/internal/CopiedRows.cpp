// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/CopiedRows.h"

#include "framework/EventGuard.h"
#include "framework/controls/RowStore.h"
#include "framework/files/availableMemory.h"
#include "framework/keepWindowPainted.h"
#include "framework/logLine.h"

#include <QPointer>

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

namespace quilvane {

namespace {

/// Calls take(row) for each row of the ranges.
template <typename Take>
void forEachRow(const RowStore& rows, const std::vector<RowRange>& ranges, Take take)
{
    constexpr std::size_t rowsPerBlock = 65'536;
    for (const RowRange& range : ranges) {
        for (std::size_t begin = range.first; begin < range.end;) {
            const std::size_t end = std::min(begin + rowsPerBlock, range.end);
            while (begin < end)
                take(rows[begin++]);
            keepWindowPainted();
        }
    }
}

} // namespace

CopiedRows::CopiedRows(const RowStore& rows, std::vector<RowRange> ranges)
    : m_rows(&rows)
    , m_ranges(std::move(ranges))
{
}

void CopiedRows::keep(std::size_t firstChanged)
{
    if (!m_rows || m_ranges.empty() || m_ranges.back().end <= firstChanged)
        return;
    // The windows are painted meanwhile. Another program may take the clipboard then, which deletes this
    // copy.
    const QPointer<CopiedRows> self(this);
    QByteArray kept = text();
    if (!self)
        return;
    m_text = std::move(kept);
    m_rows = nullptr;
}

bool CopiedRows::hasFormat(const QString& format) const
{
    return format == "text/plain";
}

QStringList CopiedRows::formats() const
{
    return { "text/plain" };
}

QVariant CopiedRows::retrieveData(const QString& format, QMetaType) const
{
    // As bytes: a string would need three times as much memory, and Qt makes one only for a receiver that
    // wants it.
    return hasFormat(format) ? QVariant(m_rows ? text() : m_text) : QVariant();
}

QByteArray CopiedRows::makeText() const
{
    const RowStore& rows = *m_rows;
    const std::vector<RowRange> ranges
        = m_ranges; // a copy, as this object may be deleted meanwhile: see keep()
    std::size_t size = 0;
    forEachRow(rows, ranges, [&size](std::string_view row) { size += row.size() + 1; });
    requireMemory(size, "The rows are too long to be copied");
    QByteArray text;
    text.reserve(static_cast<qsizetype>(size));
    forEachRow(rows, ranges, [&text](std::string_view row) {
        text.append(row.data(), static_cast<qsizetype>(row.size()));
        text.append('\n');
    });
    text.chop(1);
    return text;
}

QByteArray CopiedRows::text() const
{
    // No exception may pass through Qt, or end the handler that is about to change the list.
    try {
        return makeText();
    } catch (const std::exception& error) {
        logLine(std::string("Rows are not copied: ") + error.what());
    } catch (const QuitUnwinding&) {
    }
    return {};
}

} // namespace quilvane

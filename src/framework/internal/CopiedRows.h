// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/internal/RowPlace.h"

#include <QMimeData>

namespace quilvane {

class RowStore;

/// Rows of a list in the clipboard or on a drag, one a line. Their text is made each time that a program asks
/// for it, since many copies are never pasted. Only when the list is about to change is it made in advance
/// and kept.
class CopiedRows : public QMimeData {
public:
    /// `rows` must live until keep() is called.
    CopiedRows(const RowStore& rows, std::vector<RowRange> ranges);

    /// To be called before rows from `firstChanged` on are removed or moved: keeps the text if it contains
    /// any of them.
    void keep(std::size_t firstChanged);

    bool hasFormat(const QString& format) const override;
    QStringList formats() const override;

protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
    /// Throws OutOfMemoryException, and what keepWindowPainted() throws.
    QByteArray makeText() const;
    /// Empty, with a line in the log, if there is no memory for the text.
    QByteArray text() const;

    const RowStore* m_rows; // null once the text is kept
    std::vector<RowRange> m_ranges;
    QByteArray m_text;
};

} // namespace quilvane

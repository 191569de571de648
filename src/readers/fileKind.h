// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace quilvane {

enum class FileKind { PDF, Word, Delimited, Text, Other };

/// The kind of a file that is searched by itself, told from its whole name: the first of .pdf, .doc, .csv and
/// .txt, in that order, that stands anywhere in it, in any case. So notes.doc.txt is Word, and
/// archive.pdf.csv is PDF.
FileKind fileKind(std::string_view name);

} // namespace quilvane

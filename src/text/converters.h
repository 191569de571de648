// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace quilvane {

/// The system's name for the character set that a page or a document calls `label`, in upper or lower case;
/// null for a label that is not in the table. So the words of a document never choose what is loaded.
const char* converterName(std::string_view label);

/// Loads the converters of all character sets that the readers may ask for, and keeps them: a process that
/// has closed itself in can load none any more.
void keepConvertersLoaded();

} // namespace quilvane

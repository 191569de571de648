// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/reader/messages.h"
#include "documents/reader/sandbox.h"

#include <sys/types.h>

namespace quilvane {

/// The work of a new child: closes itself in (Sandbox), reads the document from the descriptor readerDocument
/// and sends what is in it over readerSocket. Returns the exit status. `reader` is the process that has
/// forked it.
int readDocument(const ReaderOrder& order, const Sandbox& sandbox, pid_t reader);

} // namespace quilvane

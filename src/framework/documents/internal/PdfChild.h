// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/reader/frames.h"
#include "documents/reader/pdfMessages.h"
#include "framework/documents/DynaPDFMBS.h"
#include "framework/files/FileDescriptor.h"

#include <optional>
#include <string>

#include <sys/types.h>

namespace quilvane {

/// A process of ours that reads one PDF document, so that no document takes the program's time, memory or
/// life.
///
/// Starts with the object and is killed with it, whatever it is doing. When ask() fails, it has ended.
class PdfChild {
public:
    /// `document` is a descriptor, left to the caller. Throws RuntimeException if the process can't be
    /// started.
    PdfChild(int document, const PdfLimits& limits);
    ~PdfChild();
    PdfChild(const PdfChild&) = delete;
    PdfChild& operator=(const PdfChild&) = delete;

    /// Sends the request and waits for the reply, until the deadline at the latest. If none comes, `whyNot`
    /// gets a sentence for the user.
    std::optional<PdfReply> ask(const PdfRequest& request, std::string& whyNot);

private:
    /// Sets `reply` if all goes well.
    Transfer exchange(const PdfRequest& request, std::optional<PdfReply>& reply);
    /// Kills the process if it still runs, and returns how it ended, as waitpid does.
    int end();

    const PdfLimits m_limits;
    FileDescriptor m_socket;
    pid_t m_process = -1; // -1 once it has been waited for
};

} // namespace quilvane

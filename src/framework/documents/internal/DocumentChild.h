// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/reader/messages.h"
#include "framework/documents/DocumentLimits.h"
#include "framework/documents/internal/ReaderProcess.h"
#include "framework/files/FileDescriptor.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace quilvane {

/// A child of the reader that reads one document.
///
/// It begins with the object and is killed with it. When receive() has failed, it has ended.
class DocumentChild {
public:
    /// `file` is a descriptor that the caller keeps. Of `order` only the kind and the part of the file are
    /// used. Throws ReaderLost, and RuntimeException if there can be no reader.
    DocumentChild(ReaderOrder order, int file, const DocumentLimits& limits);
    ~DocumentChild();
    DocumentChild(const DocumentChild&) = delete;
    DocumentChild& operator=(const DocumentChild&) = delete;

    /// Replaces `frame` with the next one, of `largest` bytes at most. If none comes, `whyNot` gets a
    /// sentence for the user. Throws ReaderLost.
    bool receive(std::string& frame, std::size_t largest, std::string& whyNot);

    /// To be called before receive() when receive() was not called for some time.
    void resume();

    /// Ends the child because it has sent an invalid frame. Returns the sentence for the user.
    std::string refuse();

private:
    bool waitFor(int socket, short event);
    bool isAtWork();
    std::string whyEnded(bool wasIdle);

    DocumentLimits m_limits;
    std::shared_ptr<ReaderProcess> m_reader;
    FileDescriptor m_socket;
    std::uint32_t m_number = 0;
    std::chrono::steady_clock::time_point m_lastLook;
    std::uint32_t m_worked = 0; // milliseconds of processor time at the last check
    bool m_hasSent = false; // since the last check
    int m_slowChecks = 0; // in which it had sent something, and done little else
    bool m_hasEnded = false;
};

} // namespace quilvane

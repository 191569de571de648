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

/// A child of the reader that reads one document for us.
///
/// It begins with the object and is killed with it, whatever it is doing. When receive() fails, it has ended.
class DocumentChild {
public:
    /// `file` is a descriptor, left to the caller; of the order the kind and the part count.
    /// Throws ReaderLost, and RuntimeException if there can be no reader.
    DocumentChild(ReaderOrder order, int file, const DocumentLimits& limits);
    ~DocumentChild();
    DocumentChild(const DocumentChild&) = delete;
    DocumentChild& operator=(const DocumentChild&) = delete;

    /// Replaces `frame` with the next one, of `largest` bytes at most. If none comes, `whyNot` gets a
    /// sentence for the user. Throws ReaderLost.
    bool receive(std::string& frame, std::size_t largest, std::string& whyNot);

    /// To be called before receive() when some time has passed in which nobody received.
    void resume();

    /// What ends it for a frame that makes no sense. Returns the sentence for the user.
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
    std::uint32_t m_worked = 0; // milliseconds, at the last look
    bool m_hasEnded = false;
};

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "documents/reader/messages.h"
#include "framework/exceptions.h"
#include "framework/files/FileDescriptor.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <sys/types.h>

namespace quilvane {

/// The reader process ended before it could do what it was asked for. No fault of a document's: it may be
/// tried again, with another reader.
class ReaderLost : public RuntimeException {
public:
    ReaderLost();
};

/// Waits until poll's `event` comes to pass on the socket; false if it has not after `most`. The one place
/// where the program waits for a document that is being read.
bool waitForReader(int socket, short event, std::chrono::milliseconds most);

/// The process that reads documents, quilvane-reader. It is started with the first document, on the main
/// thread, ends when it has had nothing to do for a while, and is then started anew.
///
/// Kept alive by those who hold it; running() holds the present one.
class ReaderProcess {
public:
    /// Throws RuntimeException, which names the program, if it can't be started or is not the one that was
    /// built with this program.
    static std::shared_ptr<ReaderProcess> running();
    /// The next running() starts another one. To be called when this one is of no more use.
    static void forget();
    /// Forgets the present one if it has ended by itself; it would stay a zombie until the next document. To
    /// be called when the event loop turns.
    static void reap();
    /// Its path: beside the program, as it is built, or where an installation keeps it. Tests put others
    /// there.
    static std::string& program();

    ReaderProcess();
    /// Kills the process, and with it all that it reads.
    ~ReaderProcess();
    ReaderProcess(const ReaderProcess&) = delete;
    ReaderProcess& operator=(const ReaderProcess&) = delete;

    /// Has a child read the file, a descriptor, and tell what is in it over the socket. Returns the
    /// document's number. Throws ReaderLost.
    std::uint32_t read(ReaderOrder order, int file, int socket);
    /// One of the actions that are answered. Throws ReaderLost.
    std::uint32_t ask(ReaderOrder::Action action, std::uint32_t document);
    /// Ends the child, if there is still one.
    void end(std::uint32_t document);

private:
    void start();
    void greet();
    void stop();

    FileDescriptor m_socket;
    pid_t m_process = -1;
    std::uint32_t m_lastDocument = 0;
};

} // namespace quilvane

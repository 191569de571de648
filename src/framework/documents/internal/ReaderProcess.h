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

/// The reader process has ended before it answered. The document is not the cause and may be read again, by
/// another reader.
class ReaderLost : public RuntimeException {
public:
    ReaderLost();
};

/// Waits until poll's `event` occurs on the socket; false if it has not after `most`. The only place where
/// the program waits for a document that is being read.
bool waitForReader(int socket, short event, std::chrono::milliseconds most);

/// The process that reads documents, quilvane-reader. It is started with the first document, on the main
/// thread. It ends when it was idle for a while, and the next document starts it again.
///
/// Shared by the DocumentChild objects that use it and running(), which keeps the current one.
class ReaderProcess {
public:
    /// Throws RuntimeException, which names the reader, if it can't be started or was not built with this
    /// program.
    static std::shared_ptr<ReaderProcess> running();
    /// The next running() starts another one.
    static void forget();
    /// Forgets the current one if it has ended by itself; it would stay a zombie until the next document. To
    /// be called when the event loop turns.
    static void reap();
    /// The path of the reader's program: beside this program in a build folder, else where it is installed.
    /// Tests change it.
    static std::string& program();

    ReaderProcess();
    /// Kills the process, and with it its children.
    ~ReaderProcess();
    ReaderProcess(const ReaderProcess&) = delete;
    ReaderProcess& operator=(const ReaderProcess&) = delete;

    /// Lets a child read `file`, a descriptor, and send what is in it over `socket`. Returns the document's
    /// number. Throws ReaderLost; the next running() then starts another one.
    std::uint32_t read(ReaderOrder order, int file, int socket);
    /// For the actions that have an answer. Throws ReaderLost as read() does.
    std::uint32_t ask(ReaderOrder::Action action, std::uint32_t document);
    /// Ends the document's child, if there still is one.
    void end(std::uint32_t document);

private:
    void start();
    void greet();
    void stop();
    [[noreturn]] void throwLost();

    FileDescriptor m_socket;
    pid_t m_process = -1;
    std::uint32_t m_lastDocument = 0;
};

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include <linux/filter.h>
#include <sys/types.h>

namespace quilvane {

/// What a kernel offers for restricting a process. Each part works without the other.
struct Walls {
    /// The version of Landlock, which guards the file system; 0 if there is none.
    int landlock = 0;
    /// The filter of system calls.
    bool seccomp = false;
};

/// Of the running kernel.
Walls availableWalls();

/// A sentence for the log; empty if nothing is missing.
std::string missingFrom(const Walls& walls);

/// What a process may cost.
struct Allowance {
    /// Bytes of private memory; pages of a mapped file and the stack, of 8 MiB at most, don't count. Not
    /// under AddressSanitizer, which reserves terabytes.
    std::uint64_t memory = 0;
    /// Of processor time, after which the kernel ends it.
    std::uint32_t seconds = 0;
};

/// Restricts processes for the rest of their lives: such a process can read its document and the character
/// tables of the PDF library, speak over its socket, and ask for memory; it opens no other file, writes none,
/// makes no process and no connection, and reaches no other process. It can still learn which files there
/// are, with their sizes, times and owners, because it may call stat; never their contents. A system call
/// that is not allowed fails and does not kill the process: the next version of a library may try calls that
/// it can do without.
///
/// Made once, before the processes are forked.
class Sandbox {
public:
    /// `walls` are those to use, which the kernel must have. `socket` and `document` are the descriptors that
    /// each of the processes will have.
    Sandbox(const Walls& walls, int socket, int document);

    /// Restricts the calling process, which from now on ends when `parent` does. False if something that the
    /// kernel offers has failed; then nothing may be read.
    [[nodiscard]] bool closeIn(const Allowance& allowance, pid_t parent) const;

private:
    bool closeFileSystem() const;
    bool closeSystemCalls() const;

    Walls m_walls;
    int m_document;
    /// The filter of system calls; empty if it could not be made.
    std::vector<sock_filter> m_filter;
};

/// Lets the kernel end the process after that much more processor time; zero takes it back.
void limitStep(std::chrono::milliseconds time);

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/files/FileDescriptor.h"

#include <string>

namespace quilvane {

/// A file that waits, until it is whole, to take the place of another or a place that is free.
///
/// Where the file system can do so it has no name, so that nothing of it stays if the program is killed. Else
/// it is a hidden file beside the target, with a lock; a file of that kind without a lock was left by a
/// program that was killed, and the next one made in that folder removes it.
class TemporaryFile {
public:
    TemporaryFile() = default;
    /// In the folder of `target`. Not open, with errno set, if none can be made there.
    static TemporaryFile beside(const std::string& target, unsigned mode);
    /// Without a name, in the system's folder for temporary files: it can only be copied from. Not open, with
    /// errno set, if none can be made.
    static TemporaryFile elsewhere();

    TemporaryFile(TemporaryFile&& other) noexcept = default;
    TemporaryFile& operator=(TemporaryFile&& other) noexcept;
    ~TemporaryFile() { discard(); }

    bool isOpen() const { return m_file.isOpen(); }
    int number() const { return m_file.number(); }

    /// Goes to the disk and takes the place of `target`, in whose folder it must have been made, at one
    /// stroke. Returns 0 or the errno value; the target is then untouched.
    int rename(const std::string& target);

    /// Writes what this file holds into `target`, which must be there; its other names, its owner and its
    /// permissions stay. Returns 0 or the errno value. If there is no room for a longer text the target is
    /// untouched; a disk that fails after that leaves it in pieces.
    int copyInto(const std::string& target) const;

    /// Closes and removes the file; does nothing if there is none.
    void discard() noexcept;

private:
    FileDescriptor m_file;
    std::string m_path; // empty while it has no name of its own
};

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/files/FileDescriptor.h"

#include <string>

namespace quilvane {

/// A file that replaces another one, or becomes a new one, only when it is complete.
///
/// If the file system supports it, the file has no name, so that nothing is left of it if the program is
/// killed. Otherwise it is a hidden file beside the target, with a lock. Such a file without a lock was left
/// by a program that was killed; the next one that is made in that folder removes it.
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

    /// Writes the file to the disk and replaces `target` by it in one step. It must have been made in the
    /// folder of `target`. Returns 0, or the errno value of a failure, which leaves the target unchanged.
    int rename(const std::string& target);

    /// Writes what this file holds into `target`, which must be there; its other names, its owner and its
    /// permissions stay. Returns 0 or the errno value. If the disk has no room for a longer text the target
    /// is unchanged; a failure of the disk after that leaves it damaged.
    int copyInto(const std::string& target) const;

    /// Closes and removes the file; does nothing if there is none.
    void discard() noexcept;

private:
    FileDescriptor m_file;
    std::string m_path; // empty while it has no name of its own
};

} // namespace quilvane

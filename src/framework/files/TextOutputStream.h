// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/files/FileDescriptor.h"

#include <string>
#include <string_view>

namespace quilvane {

class FolderItem;

/// Writes a text file that takes its place only when it is whole.
///
/// The text goes into a temporary file beside the target; Close() brings it to the disk and renames it over
/// the target. When the last reference goes the stream is closed too, unless an exception is on its way or a
/// write has failed: then the temporary file is removed and the target is as it was.
class TextOutputStream {
public:
    /// Makes the file or prepares to replace it. A link is followed and stays. Nil, with the reason, if the
    /// folder can't be written to or the target is write-protected or no regular file.
    static Ref<TextOutputStream> Create(const FolderItem& item);

    /// Only for Create.
    struct Target {
        std::string shownPath; // as the user knows it
        std::string path; // all links followed
        std::string temporaryPath;
        FileDescriptor temporary;
    };
    explicit TextOutputStream(Target target);

    TextOutputStream(const TextOutputStream&) = delete;
    TextOutputStream& operator=(const TextOutputStream&) = delete;
    ~TextOutputStream();

    /// Throws IOException; the stream is then closed, the target untouched.
    void Write(std::string_view text);
    /// Writes `text` and one line end.
    void WriteLine(std::string_view text);

    /// Throws IOException if the file can't be brought to its place; the target is then untouched. Does
    /// nothing on a stream that is closed or has failed. A destructor can't report that, so who wants to know
    /// calls Close.
    void Close();

private:
    void bringToPlace();
    void giveUp() noexcept;

    Target m_target;
    int m_exceptionsAtStart;
};

} // namespace quilvane

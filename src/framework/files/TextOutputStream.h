// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/files/TemporaryFile.h"

#include <string>
#include <string_view>

namespace quilvane {

class FolderItem;

/// Writes a text file that takes its place only when it is whole.
///
/// The text goes into a temporary file beside the target; Close() brings it to the disk and puts it in the
/// place of the target. When the last reference goes the stream is closed too, unless an exception is on its
/// way or a write has failed: then the temporary file is removed and the target is as it was. A program that
/// is killed leaves the target as it was, too.
///
/// A target that has several names, or that may be written but not replaced, is filled with the whole text
/// by Close() instead. There must be room for both texts then, but a disk that fails in the middle of that,
/// and nothing else, leaves it in pieces.
class TextOutputStream {
public:
    /// Makes the file or prepares to replace it. A link is followed and stays. Nil, with the reason, if a new
    /// file can't be made in the folder or the target is write-protected or no regular file.
    static Ref<TextOutputStream> Create(const FolderItem& item);

    /// Only for Create.
    struct Target {
        std::string shownPath; // as the user knows it
        std::string path; // all links followed
        TemporaryFile temporary;
        bool isFilledInPlace = false; // else `temporary` takes its place
    };
    explicit TextOutputStream(Target target);

    TextOutputStream(const TextOutputStream&) = delete;
    TextOutputStream& operator=(const TextOutputStream&) = delete;
    ~TextOutputStream();

    /// Throws IOException; the stream is then closed, the target untouched.
    void Write(std::string_view text);
    /// Writes `text` and one line end.
    void WriteLine(std::string_view text);

    /// Throws IOException if the text can't be brought to its place; the target is then untouched, save as
    /// told above. Does
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

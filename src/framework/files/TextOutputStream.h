// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Ref.h"
#include "framework/files/TemporaryFile.h"

#include <string>
#include <string_view>

namespace quilvane {

class FolderItem;

/// Writes a text file that replaces an older one only when it is complete.
///
/// The text goes into a temporary file beside the target; Close() writes it to the disk and replaces the
/// target by it. The destructor calls Close(), unless an exception is being thrown or a write has failed:
/// then the temporary file is removed and the target is unchanged. If the program is killed the target is
/// unchanged, too.
///
/// A target that has several names, or that may be written but not replaced, is filled with the whole text
/// by Close() instead. That needs room for both texts. Only if the disk fails, or the program is killed, in
/// the middle of it is the target damaged.
class TextOutputStream {
public:
    /// Makes the file or prepares to replace it. A link is followed and stays. Nil, with the reason, if a new
    /// file can't be made in the folder or the target is write-protected or no regular file.
    static Ref<TextOutputStream> Create(const FolderItem& item);

    /// Only for Create.
    struct Target {
        std::string shownPath; // as the user chose it
        std::string path; // all links followed
        TemporaryFile temporary;
        bool isFilledInPlace = false; // else `temporary` replaces it
    };
    explicit TextOutputStream(Target target);

    TextOutputStream(const TextOutputStream&) = delete;
    TextOutputStream& operator=(const TextOutputStream&) = delete;
    ~TextOutputStream();

    /// Throws IOException; the stream is then closed and the target unchanged.
    void Write(std::string_view text);
    /// Writes `text` and one line end.
    void WriteLine(std::string_view text);

    /// Throws IOException if that fails; the target is then unchanged, with the exception described above.
    /// Does nothing on a stream that is closed or has failed. The destructor can't report a failure, so call
    /// Close to get it.
    void Close();

private:
    void bringToPlace();
    void giveUp() noexcept;

    Target m_target;
    int m_exceptionsAtStart;
};

} // namespace quilvane

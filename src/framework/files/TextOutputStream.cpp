// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/TextOutputStream.h"

#include "framework/EventGuard.h"
#include "framework/exceptions.h"
#include "framework/files/FolderItem.h"
#include "framework/files/displayName.h"
#include "framework/keepWindowPainted.h"
#include "framework/strings.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <exception>
#include <filesystem>
#include <future>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quilvane {

namespace {

/// The path to which a chain of links leads; it need not exist.
std::string withLinksFollowed(std::string path)
{
    constexpr int longestChain = 40; // the kernel has the same limit
    std::error_code failure;
    for (int i = 0; i < longestChain && std::filesystem::is_symlink(path, failure); ++i) {
        const std::filesystem::path target = std::filesystem::read_symlink(path, failure);
        if (failure)
            break;
        path = (std::filesystem::path(path).parent_path() / target).native();
    }
    return path;
}

/// Does `work`, which waits for the disk, on another thread while the windows are painted. Returns its
/// result. If the program is asked to quit meanwhile, the work is still completed.
template <typename Work>
int doWhilePainting(Work work)
{
    std::future<int> result;
    try {
        result = std::async(std::launch::async, work);
    } catch (const std::system_error&) {
        return work(); // the system gives no thread
    }
    while (result.wait_for(std::chrono::milliseconds(20)) != std::future_status::ready)
        keepWindowPainted();
    return result.get();
}

int writeAll(int file, std::string_view text)
{
    constexpr std::size_t largestWrite = std::size_t(1) << 20; // bytes
    while (!text.empty()) {
        keepWindowPainted();
        const ssize_t written = ::write(file, text.data(), std::min(text.size(), largestWrite));
        if (written >= 0)
            text.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

} // namespace

Ref<TextOutputStream> TextOutputStream::Create(const FolderItem& item)
{
    constexpr mode_t forAll = 0666; // the user's umask removes what others must not have
    constexpr mode_t permissions = 0777;
    Target target;
    target.shownPath = item.NativePath();
    target.path = withLinksFollowed(item.NativePath());

    const auto failed = [&target] {
        return Ref<TextOutputStream>::nil(IOException(target.shownPath, "created", errno).what());
    };
    struct stat existing { };
    const bool exists = ::stat(target.path.c_str(), &existing) == 0;
    if (!exists && errno != ENOENT)
        return failed();
    if (exists && !S_ISREG(existing.st_mode))
        return Ref<TextOutputStream>::nil('"' + displayPath(target.shownPath) + "\" is not a regular file.");
    // Renaming needs only the folder's permission, so it would replace a write-protected file.
    if (exists && ::faccessat(AT_FDCWD, target.path.c_str(), W_OK, AT_EACCESS) != 0)
        return failed();

    const mode_t mode = exists ? existing.st_mode & permissions : forAll;
    target.temporary = TemporaryFile::beside(target.path, mode);
    if (!target.temporary.isOpen()) {
        const int failure = errno;
        if (exists) // it may be written, though no file can be made in its folder
            target.temporary = TemporaryFile::elsewhere();
        target.isFilledInPlace = true;
        errno = failure;
    }
    if (!target.temporary.isOpen())
        return failed();
    if (exists) {
        // After a rename its other names would still mean the old file.
        target.isFilledInPlace = target.isFilledInPlace || existing.st_nlink > 1;
        // Without effect where the user may not give files away.
        [[maybe_unused]] const int ignored
            = ::fchown(target.temporary.number(), existing.st_uid, existing.st_gid);
        ::fchmod(target.temporary.number(), mode);
    }
    return Ref<TextOutputStream>::make(std::move(target));
}

TextOutputStream::TextOutputStream(Target target)
    : m_target(std::move(target))
    , m_exceptionsAtStart(std::uncaught_exceptions())
{
}

TextOutputStream::~TextOutputStream()
{
    if (std::uncaught_exceptions() > m_exceptionsAtStart) {
        giveUp();
        return;
    }
    try {
        Close();
    } catch (const std::exception&) { // a destructor can't report it
    } catch (const QuitUnwinding&) { // the handler ends at its next keepWindowPainted()
    }
}

void TextOutputStream::WriteLine(std::string_view text)
{
    Write(text);
    Write(endOfLine);
}

void TextOutputStream::Write(std::string_view text)
{
    if (const int failure = writeAll(m_target.temporary.number(), text); failure != 0) {
        giveUp();
        throw IOException(m_target.shownPath, "written", failure);
    }
}

void TextOutputStream::Close()
{
    if (m_target.temporary.isOpen())
        bringToPlace();
}

void TextOutputStream::bringToPlace()
{
    TemporaryFile whole = std::move(m_target.temporary);
    const int failure = doWhilePainting([this, &whole] {
        const int refused = m_target.isFilledInPlace ? EPERM : whole.rename(m_target.path);
        // A shared folder may allow a file to be written but not replaced.
        return refused == EPERM || refused == EACCES ? whole.copyInto(m_target.path) : refused;
    });
    if (failure != 0)
        throw IOException(m_target.shownPath, "written", failure);
}

void TextOutputStream::giveUp() noexcept
{
    m_target.temporary.discard();
}

} // namespace quilvane

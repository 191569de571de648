// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/TextOutputStream.h"

#include "framework/EventGuard.h"
#include "framework/files/FolderItem.h"
#include "framework/files/displayName.h"
#include "framework/keepWindowPainted.h"
#include "framework/strings.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
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

/// Where a chain of links ends, there or not.
std::string behindLinks(std::string path)
{
    constexpr int longestChain = 40; // as the kernel's own
    std::error_code failure;
    for (int i = 0; i < longestChain && std::filesystem::is_symlink(path, failure); ++i) {
        const std::filesystem::path target = std::filesystem::read_symlink(path, failure);
        if (failure)
            break;
        path = (std::filesystem::path(path).parent_path() / target).native();
    }
    return path;
}

/// Makes a file of a new name in the folder of `target`, and sets `path` to it. Not open, with errno set, if
/// none can be made.
FileDescriptor makeTemporary(const std::string& target, mode_t mode, std::string& path)
{
    static unsigned counter = 0;
    constexpr int attempts = 100; // a process of the same number may have been killed and have left some
    const std::string start
        = target.substr(0, target.rfind('/') + 1) + ".quilvane-" + std::to_string(::getpid()) + '-';
    FileDescriptor file;
    for (int i = 0; i < attempts && !file.isOpen() && (i == 0 || errno == EEXIST); ++i) {
        path = start + std::to_string(counter++);
        file = FileDescriptor(
            ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode));
    }
    return file;
}

/// fsync, which may take as long as the disk has to write. Returns the errno value.
int syncToDisk(int file)
{
    const auto sync = [file] { return ::fsync(file) == 0 ? 0 : errno; };
    std::future<int> result;
    try {
        result = std::async(std::launch::async, sync);
    } catch (const std::system_error&) {
        return sync(); // the system gives no thread
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
    constexpr mode_t forAll = 0666; // the user's umask takes away what others are not to have
    constexpr mode_t permissions = 0777;
    Target target;
    target.shownPath = item.NativePath();
    target.path = behindLinks(item.NativePath());

    const auto failed = [&target] {
        return Ref<TextOutputStream>::nil(IOException(target.shownPath, "created", errno).what());
    };
    struct stat existing { };
    const bool exists = ::stat(target.path.c_str(), &existing) == 0;
    if (!exists && errno != ENOENT)
        return failed();
    if (exists && !S_ISREG(existing.st_mode))
        return Ref<TextOutputStream>::nil('"' + displayPath(target.shownPath) + "\" is not a regular file.");
    // Renaming asks for the folder's permission only, so a write-protected file would be replaced.
    if (exists && ::faccessat(AT_FDCWD, target.path.c_str(), W_OK, AT_EACCESS) != 0)
        return failed();

    const mode_t mode = exists ? existing.st_mode & permissions : forAll;
    target.temporary = makeTemporary(target.path, mode, target.temporaryPath);
    if (!target.temporary.isOpen())
        return failed();
    if (exists) {
        // Of no effect, and no harm, where the user may not give files away.
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
    } catch (const IOException&) { // the target is untouched, and a destructor has nobody to tell
    } catch (const QuitUnwinding&) {
        giveUp(); // the handler ends at its next look at the clock
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
    // Some file systems know no fsync; there is then nothing to wait for.
    int failure = syncToDisk(m_target.temporary.number());
    if (failure == EINVAL)
        failure = 0;
    if (const int closing = m_target.temporary.close(); failure == 0)
        failure = closing;
    if (failure == 0 && std::rename(m_target.temporaryPath.c_str(), m_target.path.c_str()) != 0)
        failure = errno;
    if (failure != 0) {
        ::unlink(m_target.temporaryPath.c_str());
        throw IOException(m_target.shownPath, "written", failure);
    }
}

void TextOutputStream::giveUp() noexcept
{
    if (m_target.temporary.isOpen()) {
        m_target.temporary.close();
        ::unlink(m_target.temporaryPath.c_str());
    }
}

} // namespace quilvane

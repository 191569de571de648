// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/TemporaryFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quilvane {

namespace {

std::string folderOf(const std::string& path)
{
    return path.substr(0, path.rfind('/') + 1);
}

/// At most so many exist in a folder at a time. Few, so that all names can be checked for left-over files.
constexpr int mostNames = 16;

std::string temporaryName(const std::string& target, int number)
{
    return folderOf(target) + ".quilvane-" + std::to_string(::geteuid()) + '-' + std::to_string(number);
}

bool isNameOf(const std::string& path, int file)
{
    struct stat named { };
    struct stat opened { };
    return ::lstat(path.c_str(), &named) == 0 && ::fstat(file, &opened) == 0 && named.st_dev == opened.st_dev
        && named.st_ino == opened.st_ino;
}

/// Removes the user's own files of these names that nobody has locked.
void removeLeftOver(const std::string& target)
{
    for (int i = 0; i < mostNames; ++i) {
        const std::string path = temporaryName(target, i);
        struct stat status { };
        if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != ::geteuid())
            continue;
        const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
        // Before the lock was taken, the name may have been given to another file.
        if (file.isOpen() && ::flock(file.number(), LOCK_EX | LOCK_NB) == 0 && isNameOf(path, file.number()))
            ::unlink(path.c_str());
    }
}

/// Calls make(path), which returns false and sets errno to EEXIST for a name that is taken. Returns the name,
/// or "" with errno set.
template <typename Make>
std::string makeName(const std::string& target, Make make)
{
    for (int i = 0; i < mostNames; ++i) {
        std::string path = temporaryName(target, i);
        if (make(path))
            return path;
        if (errno != EEXIST)
            break;
    }
    return {};
}

/// False only if another process has locked the file. On a file system without locks, left-over files stay.
bool lock(int file)
{
    return ::flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

/// Returns 0 or the errno value. Some file systems have no fsync; then there is nothing to wait for.
int sync(int file)
{
    return ::fsync(file) == 0 || errno == EINVAL ? 0 : errno;
}

/// Copies the bytes from `begin` to `end` to the same places. Returns 0 or the errno value.
int copyBytes(int from, int into, off_t begin, off_t end)
{
    std::vector<char> piece(std::size_t(1) << 20);
    while (begin < end) {
        const auto wanted = std::min(piece.size(), static_cast<std::size_t>(end - begin));
        const ssize_t got = ::pread(from, piece.data(), wanted, begin);
        const ssize_t written
            = got > 0 ? ::pwrite(into, piece.data(), static_cast<std::size_t>(got), begin) : got;
        if (written > 0)
            begin += written;
        else if (written == 0)
            return EIO; // shorter than it was
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

} // namespace

TemporaryFile TemporaryFile::beside(const std::string& target, mode_t mode)
{
    removeLeftOver(target);
    TemporaryFile made;
    made.m_file
        = FileDescriptor(::open((folderOf(target) + '.').c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, mode));
    if (made.isOpen()) {
        lock(made.number()); // for the name that rename() may give it for a moment
        return made;
    }
    made.m_path = makeName(target, [&](const std::string& path) {
        made.m_file
            = FileDescriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode));
        // Before it had its lock, another process may have removed it as left over.
        if (!made.isOpen() || (lock(made.number()) && isNameOf(path, made.number())))
            return made.isOpen();
        made.m_file.close();
        errno = EEXIST;
        return false;
    });
    return made;
}

TemporaryFile TemporaryFile::elsewhere()
{
    TemporaryFile made;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
    if (file)
        made.m_file = FileDescriptor(::fcntl(::fileno(file.get()), F_DUPFD_CLOEXEC, 0));
    return made;
}

TemporaryFile& TemporaryFile::operator=(TemporaryFile&& other) noexcept
{
    if (this != &other) {
        discard();
        m_file = std::move(other.m_file);
        m_path = std::exchange(other.m_path, {});
    }
    return *this;
}

int TemporaryFile::rename(const std::string& target)
{
    if (const int failure = sync(m_file.number()); failure != 0)
        return failure;
    if (m_path.empty()) {
        const std::string opened = "/proc/self/fd/" + std::to_string(m_file.number());
        const auto link = [&opened](const std::string& path) {
            return ::linkat(AT_FDCWD, opened.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
        };
        if (link(target))
            return 0;
        if (errno != EEXIST)
            return errno;
        // A link can't replace a file, but renaming can, and needs a name.
        m_path = makeName(target, link);
        if (m_path.empty())
            return errno;
    }
    if (std::rename(m_path.c_str(), target.c_str()) != 0)
        return errno;
    m_path.clear();
    return 0;
}

int TemporaryFile::copyInto(const std::string& target) const
{
    const FileDescriptor into(::open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat before { };
    struct stat whole { };
    if (!into.isOpen() || ::fstat(into.number(), &before) != 0 || ::fstat(m_file.number(), &whole) != 0)
        return errno;
    if (!S_ISREG(before.st_mode))
        return EINVAL;
    // First the part that needs more room on the disk: while that can fail, the old text is unchanged.
    int failure = copyBytes(m_file.number(), into.number(), before.st_size, whole.st_size);
    if (failure == 0 && whole.st_size > before.st_size)
        failure = sync(into.number());
    if (failure != 0) {
        [[maybe_unused]] const int ignored = ::ftruncate(into.number(), before.st_size);
        return failure;
    }
    failure = copyBytes(m_file.number(), into.number(), 0, std::min(before.st_size, whole.st_size));
    if (failure == 0 && ::ftruncate(into.number(), whole.st_size) != 0)
        failure = errno;
    return failure != 0 ? failure : sync(into.number());
}

void TemporaryFile::discard() noexcept
{
    if (m_file.isOpen() && !m_path.empty())
        ::unlink(m_path.c_str());
    m_path.clear();
    m_file.close();
}

} // namespace quilvane

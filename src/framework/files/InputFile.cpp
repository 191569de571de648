// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/InputFile.h"

#include "framework/exceptions.h"
#include "framework/files/availableMemory.h"
#include "framework/files/displayName.h"
#include "framework/keepWindowPainted.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quilvane {

namespace {

constexpr std::size_t largestRead = std::size_t(1)
    << 20; // bytes; a slow disk gives them in the blink of an eye

} // namespace

InputFile InputFile::open(const std::string& path, Access access, std::string& whyNot)
{
    keepWindowPainted();
    InputFile file;
    file.m_path = path;
    // O_NONBLOCK: the open of a pipe that nobody writes to would wait for a writer.
    const int mode = access == Access::Read ? O_RDONLY : O_RDWR;
    FileDescriptor opened(::open(path.c_str(), mode | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    struct stat status { };
    if (!opened.isOpen() || ::fstat(opened.number(), &status) != 0) {
        whyNot = IOException(path, "opened", errno).what();
    } else if (!S_ISREG(status.st_mode)) {
        whyNot = '"' + displayPath(path) + "\" is not a regular file.";
    } else {
        ::posix_fadvise(opened.number(), 0, 0, POSIX_FADV_SEQUENTIAL);
        file.m_descriptor = std::move(opened);
    }
    return file;
}

std::uint64_t InputFile::size() const
{
    struct stat status { };
    if (::fstat(m_descriptor.number(), &status) != 0)
        throw IOException(m_path, "read", errno);
    return static_cast<std::uint64_t>(status.st_size);
}

std::uint64_t InputFile::rest() const
{
    const std::uint64_t all = size();
    return all - std::min(all, m_position);
}

std::size_t InputFile::read(std::span<char> into)
{
    keepWindowPainted();
    ssize_t got = 0;
    do
        got = ::read(m_descriptor.number(), into.data(), std::min(into.size(), largestRead));
    while (got < 0 && errno == EINTR);
    if (got < 0)
        throw IOException(m_path, "read", errno);
    m_position += static_cast<std::size_t>(got);
    return static_cast<std::size_t>(got);
}

void InputFile::appendTo(std::string& text, std::uint64_t count)
{
    const std::uint64_t expected = std::min(rest(), count);
    requireMemory(expected, tooLarge());
    std::size_t filled = text.size();
    const std::size_t begin = filled;
    try {
        text.resize(begin + expected);
        // A file may be shorter by now, or longer, and those of /proc say that they are empty: only a read
        // that gives nothing tells the end.
        while (filled - begin < count) {
            if (filled == text.size()) {
                std::array<char, 4096> more;
                const std::size_t wanted = std::min<std::uint64_t>(more.size(), count - (filled - begin));
                const std::size_t got = read(std::span(more).first(wanted));
                if (got == 0)
                    break;
                text.append(more.data(), got);
                filled = text.size();
            } else {
                const std::size_t got = read(std::span(text).subspan(filled));
                if (got == 0)
                    break;
                filled += got;
            }
        }
        text.resize(filled);
    } catch (const std::bad_alloc&) {
        throw OutOfMemoryException(tooLarge() + '.');
    } catch (const std::length_error&) {
        throw OutOfMemoryException(tooLarge() + '.');
    }
}

void InputFile::requireMemoryForRest(unsigned copies) const
{
    requireMemory(rest() * copies, tooLarge());
}

std::string InputFile::tooLarge() const
{
    return "The file \"" + displayPath(m_path) + "\" is too large to be read";
}

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/InputFile.h"

#include "framework/exceptions.h"
#include "framework/files/FolderItem.h"
#include "framework/files/OpenedFile.h"
#include "framework/files/availableMemory.h"
#include "framework/files/displayName.h"
#include "framework/keepWindowPainted.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quilvane {

namespace {

/// In bytes. Even a slow disk reads them in a fraction of a second.
constexpr std::size_t largestRead = std::size_t(1) << 20;

} // namespace

InputFile InputFile::open(const FolderItem& item, NotRegular notRegular, std::string& whyNot)
{
    keepWindowPainted();
    InputFile file;
    file.m_path = item.NativePath();
    OpenedFile opened = item.openToRead();
    if (opened.isNotRegular() && notRegular == NotRegular::ReadAsEmpty) {
        opened.descriptor = FileDescriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        opened.failure = opened.descriptor.isOpen() ? 0 : errno;
    }
    if (opened.isNotRegular()) {
        whyNot = '"' + displayPath(file.m_path) + "\" is not a regular file.";
    } else if (!opened.descriptor.isOpen()) {
        whyNot = IOException(file.m_path, "opened", opened.failure).what();
    } else {
        file.m_sizeAtOpening = opened.size;
        file.m_descriptor = std::move(opened.descriptor);
    }
    return file;
}

void InputFile::close()
{
    m_descriptor.close();
    m_atEnd = false; // reading on throws
}

std::uint64_t InputFile::size() const
{
    struct stat status { };
    if (::fstat(m_descriptor.number(), &status) != 0)
        throw IOException(m_path, "read", errno);
    return static_cast<std::uint64_t>(status.st_size);
}

std::size_t InputFile::read(std::span<char> into)
{
    keepWindowPainted();
    if (m_atEnd || into.empty())
        return 0;
    const std::size_t wanted = std::min(into.size(), largestRead);
    ssize_t got = 0;
    do
        got = ::read(m_descriptor.number(), into.data(), wanted);
    while (got < 0 && errno == EINTR);
    if (got < 0)
        throw IOException(m_path, "read", errno);
    const auto count = static_cast<std::size_t>(got);
    m_position += count;
    // A regular file gives less than was asked for only at its end, so another call is not needed. Files of
    // /proc report size 0 and give their text in parts of any length.
    m_atEnd = count == 0 || (count < wanted && m_sizeAtOpening > 0 && m_position >= m_sizeAtOpening);
    return count;
}

void InputFile::requireMemoryForRest() const
{
    const std::uint64_t rest = m_sizeAtOpening - std::min(m_sizeAtOpening, m_position);
    requireMemory(2 * rest, "The file \"" + displayPath(m_path) + "\" is too large to be read");
}

} // namespace quilvane

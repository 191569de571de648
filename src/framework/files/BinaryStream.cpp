// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/BinaryStream.h"

#include "framework/files/FolderItem.h"

#include <algorithm>
#include <utility>

namespace quilvane {

Ref<BinaryStream> BinaryStream::Open(const FolderItem& item, bool)
{
    std::string whyNot;
    InputFile file = InputFile::open(item, InputFile::NotRegular::ReadAsEmpty, whyNot);
    if (!file.isOpen())
        return Ref<BinaryStream>::nil(std::move(whyNot));
    return Ref<BinaryStream>::make(std::move(file));
}

BinaryStream::BinaryStream(InputFile file)
    : m_file(std::move(file))
{
}

std::uint64_t BinaryStream::Length() const
{
    return m_file.size();
}

FileBytes BinaryStream::Read(std::uint64_t count)
{
    const std::uint64_t begin = m_position;
    const std::uint64_t end = std::max(Length(), begin); // the file may have become shorter
    m_position += std::min(count, end - begin);
    return FileBytes(m_file.descriptor(), m_file.path(), begin, m_position - begin);
}

void BinaryStream::Close()
{
    m_file.close();
}

} // namespace quilvane

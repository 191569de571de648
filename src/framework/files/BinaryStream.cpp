// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/files/BinaryStream.h"

#include "framework/files/FolderItem.h"

#include <utility>

namespace quilvane {

Ref<BinaryStream> BinaryStream::Open(const FolderItem& item, bool readWrite)
{
    std::string whyNot;
    InputFile file = InputFile::open(item, readWrite ? InputFile::Access::ReadWrite : InputFile::Access::Read,
        InputFile::NotRegular::ReadAsEmpty, whyNot);
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

std::string BinaryStream::Read(std::uint64_t count)
{
    std::string bytes;
    m_file.appendTo(bytes, count);
    return bytes;
}

void BinaryStream::Close()
{
    m_file.close();
}

} // namespace quilvane

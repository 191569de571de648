// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/WordFileBuilder.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include <zlib.h>

namespace quilvane {

/// Makes a zip archive in memory. Call add() for each file, then archive() once.
class ZipBuilder {
public:
    enum class Method { Stored = 0, Deflated = 8 };

    ZipBuilder& add(std::string_view name, std::string_view content, Method method = Method::Deflated)
    {
        return addPacked(name, method == Method::Deflated ? deflated(content) : std::string(content), method);
    }

    ZipBuilder& addPacked(std::string_view name, std::string_view packed, Method method)
    {
        m_lastOffset = m_files.size();
        m_files += "PK\3\4" + commonHeader(name, packed.size(), method);
        m_files.append(name).append(packed);
        return list(name, packed.size(), method);
    }

    /// Lists the file that was added last again, under another name.
    ZipBuilder& list(std::string_view name, std::size_t packedSize, Method method)
    {
        m_directory += "PK\1\2" + littleEndian(20, 2) + commonHeader(name, packedSize, method)
            + littleEndian(0, 10) + littleEndian(m_lastOffset, 4);
        m_directory.append(name);
        ++m_count;
        return *this;
    }

    std::string archive() const
    {
        return m_files + m_directory + "PK\5\6" + littleEndian(0, 4) + littleEndian(m_count, 2)
            + littleEndian(m_count, 2) + littleEndian(m_directory.size(), 4) + littleEndian(m_files.size(), 4)
            + littleEndian(0, 2);
    }

    /// `content`, then `unit` so many times. Gigabytes need only the memory of their packed form.
    static std::string deflated(std::string_view content, std::string_view unit = {}, std::size_t count = 0)
    {
        z_stream stream{};
        if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, -MAX_WBITS, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY)
            != Z_OK)
            throw std::runtime_error("zlib can't be used");
        // A full flush ends at a byte and refers to nothing before it, so that it may stand anywhere.
        std::string packed = pieceOf(stream, content, Z_FULL_FLUSH);
        const std::string packedUnit = pieceOf(stream, unit, Z_FULL_FLUSH);
        for (; count > 0; --count)
            packed += packedUnit;
        packed += pieceOf(stream, {}, Z_FINISH);
        deflateEnd(&stream);
        return packed;
    }

private:
    static std::string pieceOf(z_stream& stream, std::string_view content, int flush)
    {
        constexpr std::size_t endOfPiece = 16;
        std::string packed(deflateBound(&stream, content.size()) + endOfPiece, '\0');
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
        stream.avail_in = static_cast<uInt>(content.size());
        stream.next_out = reinterpret_cast<Bytef*>(packed.data());
        stream.avail_out = static_cast<uInt>(packed.size());
        deflate(&stream, flush);
        packed.resize(packed.size() - stream.avail_out);
        return packed;
    }

    /// The common part of the header before a file and its entry in the directory. Without a check sum.
    static std::string commonHeader(std::string_view name, std::size_t packedSize, Method method)
    {
        return littleEndian(20, 2) + littleEndian(0, 2) + littleEndian(static_cast<std::size_t>(method), 2)
            + littleEndian(0, 8) + littleEndian(packedSize, 4) + littleEndian(0, 4)
            + littleEndian(name.size(), 2) + littleEndian(0, 2);
    }

    std::string m_files;
    std::string m_directory;
    std::size_t m_lastOffset = 0;
    std::size_t m_count = 0;
};

} // namespace quilvane

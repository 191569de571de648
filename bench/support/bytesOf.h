// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace quilvane {

/// The file's bytes, read in one go. Throws std::exception if the file has no size or can't be read.
inline std::string bytesOf(const std::string& path)
{
    std::string bytes(std::filesystem::file_size(path), '\0');
    std::ifstream file(path, std::ios::binary);
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

} // namespace quilvane

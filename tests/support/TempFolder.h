// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quilvane {

/// A temporary folder for one test; its destructor deletes it with its content.
class TempFolder {
public:
    TempFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "quilvane-test-XXXXXX").native();
        if (!::mkdtemp(pattern.data()))
            throw std::runtime_error("no temporary folder could be made");
        m_path = pattern;
    }
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& path() const { return m_path; }

    /// The path of an item in the folder; it need not exist.
    std::string operator/(std::string_view name) const { return m_path + '/' + std::string(name); }

    /// Writes a file, with the folders that lead to it, and returns its path.
    std::string write(std::string_view name, std::string_view content) const
    {
        const std::string path = *this / name;
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream file(path, std::ios::binary);
        file.write(content.data(), static_cast<std::streamsize>(content.size()));
        if (!file.flush())
            throw std::runtime_error("a test file could not be written");
        return path;
    }

    std::string makeFolder(std::string_view name) const
    {
        const std::string path = *this / name;
        std::filesystem::create_directories(path);
        return path;
    }

    /// The number of entries, hidden ones included.
    std::ptrdiff_t count() const { return std::distance(std::filesystem::directory_iterator(m_path), {}); }

    /// All bytes of a file; throws if there is none.
    static std::string contentOf(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        if (!file)
            throw std::runtime_error("there is no file " + path);
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }

private:
    std::string m_path;
};

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quilvane {

/// Whether the `count` bytes from `at` on all exist.
inline bool holdsBytes(std::string_view bytes, std::size_t at, std::size_t count)
{
    return at <= bytes.size() && count <= bytes.size() - at;
}

/// 0 beyond the end.
inline std::uint8_t u8At(std::string_view bytes, std::size_t at)
{
    return at < bytes.size() ? static_cast<std::uint8_t>(bytes[at]) : std::uint8_t(0);
}

/// The low byte first. A byte beyond the end counts as 0.
inline std::uint16_t u16At(std::string_view bytes, std::size_t at)
{
    return static_cast<std::uint16_t>(u8At(bytes, at) | u8At(bytes, at + 1) << 8);
}

/// The low byte first. A byte beyond the end counts as 0.
inline std::uint32_t u32At(std::string_view bytes, std::size_t at)
{
    return u16At(bytes, at) | std::uint32_t(u16At(bytes, at + 2)) << 16;
}

/// At most `count` bytes from `at` on; fewer, or none, where the bytes end.
inline std::string_view bytesAt(std::string_view bytes, std::size_t at, std::size_t count)
{
    return at < bytes.size() ? bytes.substr(at, count) : std::string_view();
}

} // namespace quilvane

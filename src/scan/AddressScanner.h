// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quilvane {

/// Finds the e-mail addresses of one text: construct it on the text, call next() until it gives nothing.
///
/// The matches are those of the pattern \b[A-Z0-9._%+-]+@[A-Z0-9.-]+\.[A-Z]{2,}\b, ignoring ASCII case,
/// searched for again and again from the end of the match before. Bytes are taken as they are; one above 127
/// is no word character. The time is linear in the text, whatever it holds.
class AddressScanner {
public:
    /// How the bytes around an '@' are looked at. Every kernel finds the same matches.
    enum class Kernel {
        Scalar,
        Avx2,
    };

    /// Whether this build has the kernel and this processor can run it.
    static bool isSupported(Kernel kernel);
    static Kernel fastestKernel();

    /// `text` must outlive the scanner and the matches. `kernel` must be supported.
    explicit AddressScanner(std::string_view text, Kernel kernel = fastestKernel());

    /// The next match from the left, as a view into the text; nothing at the end, and ever after.
    std::optional<std::string_view> next();

private:
    std::optional<std::string_view> nextScalar();
    std::optional<std::string_view> nextAvx2();

    std::string_view matchAround(const char* at) const;
    const char* localPartBegin(const char* at) const;
    const char* domainEnd(const char* domain) const;
    std::string_view matchAroundAvx2(const char* at) const;

    const char* m_begin;
    const char* m_end;
    const char* m_previousMatchEnd;
    /// The first byte that has not been searched for an '@'.
    const char* m_unsearched;
    /// The 64 bytes before m_unsearched: bit i is set if byte i is an '@' that has not been looked at.
    std::uint64_t m_pendingAts = 0;
    Kernel m_kernel;
};

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace quilvane {

/// Finds the e-mail addresses of one text: construct it with the text, then call next() until the result is
/// empty. forEachAddress() goes through all of them.
///
/// The matches are those of the pattern \b[A-Z0-9._%+-]+@[A-Z0-9.-]+\.[A-Z]{2,}\b, ignoring ASCII case,
/// each searched from the end of the previous match. The text is bytes; one above 127 is no word character.
/// The time is linear in the text, whatever it holds.
class AddressScanner {
public:
    /// How the bytes around an '@' are examined. Every kernel finds the same matches.
    enum class Kernel {
        Scalar,
        Avx2,
    };

    /// Whether this build has the kernel and this processor can run it.
    static bool isSupported(Kernel kernel);
    static Kernel fastestKernel();

    /// `text` must outlive the scanner and the matches. `kernel` must be supported.
    explicit AddressScanner(std::string_view text, Kernel kernel = fastestKernel());

    /// The next matches from the left, as views into the text; none at the end and in all calls after it.
    /// Many at a time, since a call for each would take as long as the search. Valid until the next call.
    std::span<const std::string_view> next();

private:
    // Both fill m_matches and return the number of matches; 0 only at the end.
    std::size_t searchScalar();
    std::size_t searchAvx2();

    const char* m_begin;
    const char* m_end;
    const char* m_previousMatchEnd;
    /// The first byte that has not been searched for an '@'.
    const char* m_unsearched;
    Kernel m_kernel;
    std::array<std::string_view, 152> m_matches;
};

/// Calls visit(address) for each address of the text, from the left, as a view into it.
template <typename Visit>
void forEachAddress(
    std::string_view text, Visit visit, AddressScanner::Kernel kernel = AddressScanner::fastestKernel())
{
    AddressScanner scanner(text, kernel);
    for (auto addresses = scanner.next(); !addresses.empty(); addresses = scanner.next()) {
        for (const std::string_view address : addresses)
            visit(address);
    }
}

} // namespace quilvane

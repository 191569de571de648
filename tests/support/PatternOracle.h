// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quilvane {

/// What PCRE2 finds with a pattern, ignoring ASCII case and with bytes as characters: the reference for code
/// that does the same by hand. Uses PCRE2's JIT compiler. Throws std::runtime_error for every failure.
class PatternOracle {
public:
    static constexpr const char* addressPattern = R"(\b[A-Z0-9._%+-]+@[A-Z0-9.-]+\.[A-Z]{2,}\b)";
    static constexpr const char* picturePattern = ".png";

    explicit PatternOracle(std::string_view pattern)
    {
        int error = 0;
        PCRE2_SIZE errorOffset = 0;
        m_code.reset(pcre2_compile(unitsOf(pattern), pattern.size(), PCRE2_CASELESS | PCRE2_NEVER_UTF, &error,
            &errorOffset, nullptr));
        if (!m_code)
            fail("compile", error);
        if (const int status = pcre2_jit_compile(m_code.get(), PCRE2_JIT_COMPLETE); status != 0)
            fail("compile to machine code", status);
        m_match.reset(pcre2_match_data_create_from_pattern(m_code.get(), nullptr));
    }

    /// The first match at or after `offset`, as a view into the text; a view without data if there is none.
    std::string_view find(std::string_view text, std::size_t offset = 0) const
    {
        const int status
            = pcre2_match(m_code.get(), unitsOf(text), text.size(), offset, 0, m_match.get(), nullptr);
        if (status == PCRE2_ERROR_NOMATCH)
            return {};
        if (status < 0)
            fail("match", status);
        const PCRE2_SIZE* bounds = pcre2_get_ovector_pointer(m_match.get());
        return text.substr(bounds[0], bounds[1] - bounds[0]);
    }

    /// Every match, each searched from the end of the previous one. For patterns without empty matches.
    std::vector<std::string_view> findAll(std::string_view text) const
    {
        std::vector<std::string_view> matches;
        std::size_t offset = 0;
        for (std::string_view match = find(text); match.data(); match = find(text, offset)) {
            matches.push_back(match);
            offset = static_cast<std::size_t>(match.data() + match.size() - text.data());
        }
        return matches;
    }

private:
    struct Free {
        void operator()(pcre2_code* code) const { pcre2_code_free(code); }
        void operator()(pcre2_match_data* match) const { pcre2_match_data_free(match); }
    };

    static PCRE2_SPTR unitsOf(std::string_view text)
    {
        // PCRE2 does not accept a null pointer, which an empty view may hold.
        return reinterpret_cast<PCRE2_SPTR>(text.data() ? text.data() : "");
    }

    [[noreturn]] static void fail(const std::string& step, int error)
    {
        throw std::runtime_error("PCRE2 could not " + step + ": error " + std::to_string(error));
    }

    std::unique_ptr<pcre2_code, Free> m_code;
    std::unique_ptr<pcre2_match_data, Free> m_match;
};

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/regex/CompiledPattern.h"

#include "framework/exceptions.h"
#include "framework/regex/LiteralText.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

namespace quilvane {

static_assert(CompiledPattern::unset == PCRE2_UNSET);

namespace {

using Clock = std::chrono::steady_clock;

struct Free {
    void operator()(pcre2_code* code) const { pcre2_code_free(code); }
    void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
    void operator()(pcre2_compile_context* context) const { pcre2_compile_context_free(context); }
    void operator()(pcre2_match_context* context) const { pcre2_match_context_free(context); }
    void operator()(pcre2_jit_stack* stack) const { pcre2_jit_stack_free(stack); }
};

template <typename T>
using Owned = std::unique_ptr<T, Free>;

template <typename T>
Owned<T> owned(T* object)
{
    if (!object)
        throw std::bad_alloc();
    return Owned<T>(object);
}

std::string messageFor(int error)
{
    std::array<PCRE2_UCHAR, 256> text{};
    pcre2_get_error_message(error, text.data(), text.size());
    return reinterpret_cast<const char*>(text.data());
}

/// What all patterns run with. A run calls nothing of ours, so the one stack for compiled code serves every
/// caller.
struct Engine {
    Owned<pcre2_compile_context> compileContext = owned(pcre2_compile_context_create(nullptr));
    Owned<pcre2_match_context> matchContext = owned(pcre2_match_context_create(nullptr));
    Owned<pcre2_jit_stack> jitStack;

    Engine()
    {
        constexpr std::size_t longestPattern = std::size_t(1) << 15; // bytes
        constexpr std::size_t firstJitStack = std::size_t(1) << 15;
        constexpr std::size_t largestJitStack = std::size_t(1) << 24;
        constexpr std::uint32_t heapLimit = std::uint32_t(1) << 16; // KiB
        constexpr std::uint32_t matchLimit = 1'000'000; // a few hundredths of a second at each start
        pcre2_set_newline(compileContext.get(), PCRE2_NEWLINE_ANYCRLF);
        pcre2_set_max_pattern_length(compileContext.get(), longestPattern);
        pcre2_set_match_limit(matchContext.get(), matchLimit);
        pcre2_set_depth_limit(matchContext.get(), matchLimit);
        pcre2_set_heap_limit(matchContext.get(), heapLimit);
        // Null where the machine has no JIT compiler; PCRE2 then interprets.
        jitStack.reset(pcre2_jit_stack_create(firstJitStack, largestJitStack, nullptr));
        pcre2_jit_stack_assign(matchContext.get(), nullptr, jitStack.get());
    }
};

Engine& engine()
{
    static Engine theEngine;
    return theEngine;
}

/// PCRE2's limits bound the work at one start of a match only, and not what a repeated class does there. So
/// that a long text can't multiply that by its length, a run tries this many starts and then looks at the
/// clock. What counts from where a search began (\G, backtracking verbs) holds within such a stretch.
constexpr std::size_t startsPerSearch = 2048;

/// Far more than an honest pattern takes for a text of that size.
Clock::duration timeFor(std::size_t textSize)
{
    constexpr std::size_t nanosecondsPerByte = 100;
    return std::chrono::seconds(2) + std::chrono::nanoseconds(textSize * nanosecondsPerByte);
}

} // namespace

struct CompiledPattern::Native {
    Owned<pcre2_code> code;
    Owned<pcre2_match_data> matchData;
    std::optional<LiteralText> literal; // if the pattern is one; it is then searched without PCRE2
    std::array<std::size_t, 2> literalMatch{};

    int match(std::string_view text, std::size_t start, std::uint32_t options) const
    {
        return pcre2_match(code.get(), reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), start, options,
            matchData.get(), engine().matchContext.get());
    }
};

std::shared_ptr<const CompiledPattern> CompiledPattern::get(const std::string& pattern)
{
    constexpr std::size_t most = 32; // some twice what the program itself holds
    static std::vector<std::shared_ptr<const CompiledPattern>> recent; // the last one used stands at the end
    auto found = std::find_if(
        recent.begin(), recent.end(), [&pattern](const auto& entry) { return entry->pattern() == pattern; });
    if (found != recent.end()) {
        std::rotate(found, found + 1, recent.end());
        return recent.back();
    }
    auto compiled = std::make_shared<const CompiledPattern>(pattern);
    if (recent.size() == most)
        recent.erase(recent.begin());
    recent.push_back(compiled);
    return compiled;
}

CompiledPattern::CompiledPattern(std::string pattern)
    : m_pattern(std::move(pattern))
    , m_native(std::make_unique<Native>())
{
    // NEVER_UTF: text is bytes, and a pattern that begins with (*UTF) must not make others of them an error.
    constexpr std::uint32_t options = PCRE2_CASELESS | PCRE2_NEVER_UTF | PCRE2_USE_OFFSET_LIMIT;
    int error = 0;
    PCRE2_SIZE offset = 0;
    m_native->code.reset(pcre2_compile(reinterpret_cast<PCRE2_SPTR>(m_pattern.data()), m_pattern.size(),
        options, &error, &offset, engine().compileContext.get()));
    if (!m_native->code)
        throw RegExSearchPatternException(m_pattern, messageFor(error), offset);
    // A pattern that can't be translated for the machine is interpreted, so a failure is none.
    pcre2_jit_compile(m_native->code.get(), PCRE2_JIT_COMPLETE);
    m_native->literal = LiteralText::of(m_pattern);
    m_native->matchData = owned(pcre2_match_data_create_from_pattern(m_native->code.get(), nullptr));
}

CompiledPattern::~CompiledPattern() = default;

const LiteralText* CompiledPattern::literal() const
{
    return m_native->literal ? &*m_native->literal : nullptr;
}

std::span<const std::size_t> CompiledPattern::run(
    std::string_view text, std::size_t start, EmptyAtStart empty) const
{
    if (m_native->literal) {
        const std::size_t found = m_native->literal->find(text, start);
        if (found == std::string_view::npos)
            return {};
        m_native->literalMatch = { found, found + m_native->literal->size() };
        return m_native->literalMatch;
    }
    std::uint32_t options = empty == EmptyAtStart::Skipped ? PCRE2_NOTEMPTY_ATSTART : 0;
    std::optional<Clock::time_point> deadline;
    while (true) {
        const std::size_t end
            = text.size() - start < startsPerSearch ? text.size() : start + startsPerSearch - 1;
        pcre2_set_offset_limit(engine().matchContext.get(), end);
        const int result = m_native->match(text, start, options);
        if (result > 0)
            return { pcre2_get_ovector_pointer(m_native->matchData.get()),
                2 * std::size_t(pcre2_get_ovector_count(m_native->matchData.get())) };
        if (result != PCRE2_ERROR_NOMATCH)
            throw RegExException(m_pattern, messageFor(result));
        if (end == text.size())
            return {};

        const Clock::time_point now = Clock::now();
        if (!deadline)
            deadline = now + timeFor(text.size());
        if (now > *deadline)
            throw RegExException(m_pattern, "it takes too long on this text");
        start = end + 1;
        options = 0;
    }
}

} // namespace quilvane

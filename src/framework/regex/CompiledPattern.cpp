// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/regex/CompiledPattern.h"

#include "framework/exceptions.h"
#include "framework/keepWindowPainted.h"
#include "framework/regex/LiteralText.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

namespace quilvane {

static_assert(CompiledPattern::unset == PCRE2_UNSET);

namespace {

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

/// Counts the steps of one run. PCRE2's own limits start again at each place where a match may begin, and its
/// compiled code does not count the repeats of a class; but it can make a callout before each item of a
/// pattern.
///
/// Keeps the windows painted, since one run may take all steps of a budget.
struct StepCounter {
    std::uint64_t most;
    PCRE2_SIZE position;
    std::uint64_t steps = 0;
    std::exception_ptr thrown = nullptr; // PCRE2's compiled code can't be unwound

    static int callout(pcre2_callout_block* block, void* data)
    {
        constexpr std::uint64_t bytesPerStep = 16; // so many bytes that a class passes count as one
        constexpr unsigned calloutsPerPainting = 1u << 18; // some milliseconds
        StepCounter& counter = *static_cast<StepCounter*>(data);
        const PCRE2_SIZE position = block->current_position;
        const PCRE2_SIZE way
            = position > counter.position ? position - counter.position : counter.position - position;
        counter.position = position;
        counter.steps += 1 + way / bytesPerStep;
        static unsigned callouts = 0; // of all runs
        if (++callouts % calloutsPerPainting == 0) {
            try {
                keepWindowPainted();
            } catch (...) {
                counter.thrown = std::current_exception();
                return PCRE2_ERROR_CALLOUT;
            }
        }
        return counter.steps > counter.most ? PCRE2_ERROR_CALLOUT : 0;
    }
};

// PCRE2's own limits, for each place where a match may begin. A run without callouts that meets the first one
// is run again with them. One that meets the second one is given up, like one that has used up the budget: it
// would only take longer. A pattern of many thousand bytes has no other limit, since PCRE2 can't compile it
// with callouts.
constexpr std::uint32_t matchLimitUncounted = 1'000;
constexpr std::uint32_t matchLimitCounted = 1'000'000;

/// The settings of all patterns. A run never starts another run, so all can use the same stack for compiled
/// code.
struct Engine {
    Owned<pcre2_compile_context> compileContext = owned(pcre2_compile_context_create(nullptr));
    Owned<pcre2_match_context> matchContext = owned(pcre2_match_context_create(nullptr));
    Owned<pcre2_match_context> countingContext;
    Owned<pcre2_jit_stack> jitStack;

    Engine()
    {
        constexpr std::size_t longestPattern = std::size_t(1) << 15; // bytes
        constexpr std::size_t firstJitStack = std::size_t(1) << 15;
        constexpr std::size_t largestJitStack = std::size_t(1) << 24;
        constexpr std::uint32_t heapLimit = std::uint32_t(1) << 16; // KiB
        pcre2_set_newline(compileContext.get(), PCRE2_NEWLINE_ANYCRLF);
        pcre2_set_max_pattern_length(compileContext.get(), longestPattern);
        pcre2_set_heap_limit(matchContext.get(), heapLimit);
        // Null if there is no JIT compiler for the machine; PCRE2 then interprets patterns.
        jitStack.reset(pcre2_jit_stack_create(firstJitStack, largestJitStack, nullptr));
        pcre2_jit_stack_assign(matchContext.get(), nullptr, jitStack.get());
        countingContext = owned(pcre2_match_context_copy(matchContext.get()));
        pcre2_set_match_limit(countingContext.get(), matchLimitCounted);
        pcre2_set_match_limit(matchContext.get(), matchLimitUncounted);
    }
};

Engine& engine()
{
    static Engine theEngine;
    return theEngine;
}

// Callouts make a run several times slower. If a counted run over a short text takes few steps, the next 31
// runs over short texts are not counted: each of them is taken to cost as much as the counted one.
constexpr std::size_t runsPerCount = 32;
constexpr std::size_t longestUncounted = 256; // bytes
constexpr std::uint64_t manyStepsPerByte = 64;

/// How much the budget grows. No pattern of practical use was seen to take more than 12 steps for a byte.
constexpr std::uint64_t stepsPerByte = 16;

} // namespace

struct CompiledPattern::Native {
    Owned<pcre2_code> code;
    std::optional<Owned<pcre2_code>> countingCode; // made for the first count; null if that failed
    Owned<pcre2_match_data> matchData;
    std::optional<LiteralText> literal; // if the pattern is only a text, which is searched without PCRE2
    std::array<std::size_t, 2> literalMatch{};

    static Owned<pcre2_code> compile(
        const std::string& pattern, std::uint32_t furtherOptions, int& error, PCRE2_SIZE& offset)
    {
        // NEVER_UTF: text is bytes. With a pattern that begins with (*UTF), bytes that are no UTF-8 would be
        // an error.
        Owned<pcre2_code> code(pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.data()), pattern.size(),
            PCRE2_CASELESS | PCRE2_NEVER_UTF | furtherOptions, &error, &offset,
            engine().compileContext.get()));
        // A pattern that can't be compiled to machine code is interpreted, so this may fail.
        if (code)
            pcre2_jit_compile(code.get(), PCRE2_JIT_COMPLETE);
        return code;
    }

    int match(std::string_view text, std::size_t start, std::uint32_t options) const
    {
        return pcre2_match(code.get(), reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), start, options,
            matchData.get(), engine().matchContext.get());
    }

    int matchCounted(const std::string& pattern, std::string_view text, std::size_t start,
        std::uint32_t options, MatchingBudget& budget)
    {
        int error = 0;
        PCRE2_SIZE offset = 0;
        if (!countingCode)
            countingCode = compile(pattern, PCRE2_AUTO_CALLOUT, error, offset);
        StepCounter counter{ budget.stepsLeft, start };
        pcre2_set_callout(engine().countingContext.get(), StepCounter::callout, &counter);
        const int result = pcre2_match((*countingCode ? *countingCode : code).get(),
            reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), start, options, matchData.get(),
            engine().countingContext.get());
        if (counter.thrown)
            std::rethrow_exception(counter.thrown);
        std::uint64_t price = counter.steps;
        if (text.size() <= longestUncounted && price <= manyStepsPerByte * (text.size() - start + 1)) {
            budget.runsUncounted = runsPerCount - 1;
            price *= runsPerCount;
        }
        budget.stepsLeft -= std::min(budget.stepsLeft, price);
        return result;
    }
};

std::shared_ptr<const CompiledPattern> CompiledPattern::get(const std::string& pattern)
{
    constexpr std::size_t most = 32; // about twice the number of the program's own patterns
    static std::vector<std::shared_ptr<const CompiledPattern>> recent; // the one used last is at the end
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
    int error = 0;
    PCRE2_SIZE offset = 0;
    m_native->code = Native::compile(m_pattern, 0, error, offset);
    if (!m_native->code)
        throw RegExSearchPatternException(m_pattern, messageFor(error), offset);
    m_native->literal = LiteralText::of(m_pattern);
    m_native->matchData = owned(pcre2_match_data_create_from_pattern(m_native->code.get(), nullptr));
}

CompiledPattern::~CompiledPattern() = default;

const LiteralText* CompiledPattern::literal() const
{
    return m_native->literal ? &*m_native->literal : nullptr;
}

std::span<const std::size_t> CompiledPattern::run(
    std::string_view text, MatchingBudget& budget, std::size_t start, EmptyAtStart empty) const
{
    if (m_native->literal) {
        const std::size_t found = m_native->literal->find(text, start);
        if (found == std::string_view::npos)
            return {};
        m_native->literalMatch = { found, found + m_native->literal->size() };
        return m_native->literalMatch;
    }
    const std::uint32_t options = empty == EmptyAtStart::Skipped ? PCRE2_NOTEMPTY_ATSTART : 0;
    // Only with the first search in a text, not when a search continues in it.
    if (start == 0 && empty == EmptyAtStart::Allowed)
        budget.stepsLeft += stepsPerByte * text.size();
    int result = PCRE2_ERROR_MATCHLIMIT;
    if (budget.runsUncounted > 0 && text.size() <= longestUncounted) {
        --budget.runsUncounted;
        result = m_native->match(text, start, options);
    }
    if (result == PCRE2_ERROR_MATCHLIMIT)
        result = m_native->matchCounted(m_pattern, text, start, options, budget);
    if (result > 0)
        return { pcre2_get_ovector_pointer(m_native->matchData.get()),
            2 * std::size_t(pcre2_get_ovector_count(m_native->matchData.get())) };
    if (result == PCRE2_ERROR_NOMATCH)
        return {};
    if (result == PCRE2_ERROR_CALLOUT || result == PCRE2_ERROR_MATCHLIMIT)
        throw RegExException(m_pattern, "it needs too many steps for what is searched");
    throw RegExException(m_pattern, messageFor(result));
}

} // namespace quilvane

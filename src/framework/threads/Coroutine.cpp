// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/threads/Coroutine.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include <boost/context/fiber.hpp>
#include <boost/context/protected_fixedsize_stack.hpp>
#include <cxxabi.h>

#if defined(__SANITIZE_ADDRESS__)
#define QUILVANE_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUILVANE_ASAN 1
#endif
#endif
#ifdef QUILVANE_ASAN
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>
#endif

namespace quilvane {

namespace {

using boost::context::fiber;
using Allocator = boost::context::protected_fixedsize_stack;

struct StackBounds {
    const void* bottom = nullptr; // the lowest address
    std::size_t size = 0;
};

// AddressSanitizer has to be told of each switch, before and behind it, or it takes one stack's frames for
// faults of the other. `fakeStack` is its note of the stack that is left; none is kept of a stack that is
// left for good.

void aboutToSwitch([[maybe_unused]] void** fakeStack, [[maybe_unused]] const StackBounds& to)
{
#ifdef QUILVANE_ASAN
    __sanitizer_start_switch_fiber(fakeStack, to.bottom, to.size);
#endif
}

void haveSwitched([[maybe_unused]] void* fakeStack, [[maybe_unused]] StackBounds& from)
{
#ifdef QUILVANE_ASAN
    __sanitizer_finish_switch_fiber(fakeStack, &from.bottom, &from.size);
#endif
}

boost::context::stack_context allocateStack(Allocator& allocator)
{
    boost::context::stack_context stack = allocator.allocate();
#ifdef QUILVANE_ASAN
    // The marks of a stack that lay here before are still there: its outermost frames never returned.
    __asan_unpoison_memory_region(static_cast<char*>(stack.sp) - stack.size, stack.size);
#endif
    return stack;
}

/// Puts away what the C++ runtime knows of the exceptions in flight on this stack, for the time that another
/// one runs: std::uncaught_exceptions() and `throw;` must see those of their own stack. The layout is that of
/// the Itanium C++ ABI, 2.2.2.
class ExceptionsOfThisStack {
public:
    ExceptionsOfThisStack()
    {
        void* globals = abi::__cxa_get_globals();
        std::memcpy(m_kept.data(), globals, m_kept.size());
        std::memset(globals, 0, m_kept.size());
    }
    ~ExceptionsOfThisStack()
    {
        void* globals = abi::__cxa_get_globals();
        std::memcpy(globals, m_kept.data(), m_kept.size());
    }
    ExceptionsOfThisStack(const ExceptionsOfThisStack&) = delete;
    ExceptionsOfThisStack& operator=(const ExceptionsOfThisStack&) = delete;

private:
    // The stack of caught exceptions and the number of uncaught ones.
    std::array<char, sizeof(void*) + sizeof(unsigned)> m_kept;
};

} // namespace

struct Coroutine::Native {
    Native(std::size_t stackSize, std::function<void()> theFunction)
        : function(std::move(theFunction))
    {
        Allocator allocator(std::max(stackSize, Allocator::traits_type::minimum_size()));
        const boost::context::stack_context stack = allocateStack(allocator);
        const std::size_t guard = Allocator::traits_type::page_size();
        own = { static_cast<char*>(stack.sp) - stack.size + guard, stack.size - guard };
        inside = fiber(std::allocator_arg, boost::context::preallocated(stack.sp, stack.size, stack),
            allocator, [this](fiber&& from) { return run(std::move(from)); });
    }

    fiber run(fiber&& from)
    {
        haveSwitched(nullptr, callers);
        outside = std::move(from);
        function();
        ended = true;
        aboutToSwitch(nullptr, callers);
        return std::move(outside);
    }

    std::function<void()> function;
    fiber inside; // while it is suspended
    fiber outside; // while it runs: where resume() was called
    StackBounds own;
    StackBounds callers;
    bool ended = false;
};

Coroutine::Coroutine(std::size_t stackSize, std::function<void()> function)
    : m_native(std::make_unique<Native>(stackSize, std::move(function)))
{
}

Coroutine::~Coroutine() = default;

void Coroutine::resume()
{
    const ExceptionsOfThisStack exceptions;
    void* fakeStack = nullptr;
    aboutToSwitch(&fakeStack, m_native->own);
    m_native->inside = std::move(m_native->inside).resume();
    StackBounds ignored;
    haveSwitched(fakeStack, ignored);
}

void Coroutine::suspend()
{
    const ExceptionsOfThisStack exceptions;
    void* fakeStack = nullptr;
    aboutToSwitch(&fakeStack, m_native->callers);
    m_native->outside = std::move(m_native->outside).resume();
    haveSwitched(fakeStack, m_native->callers);
}

bool Coroutine::hasEnded() const
{
    return m_native->ended;
}

} // namespace quilvane

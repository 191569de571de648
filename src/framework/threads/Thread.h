// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <string>

namespace quilvane {

/// A cooperative thread: a body with a stack of its own on the one thread of the operating system. It and its
/// caller take turns, and only in Run, in Kill and at yieldToThreads(); nothing needs a lock.
///
/// Bind RunEvent, call Run. The thread ends when the body returns, throws, or is killed; Run may then be
/// called again. All threads belong to the OS thread that made the first of them. The toolkit's controls,
/// dialogs and event loop may not be used on a body's stack. A body may not yield inside a noexcept function,
/// and a `catch (...)` around a yield must throw on, as Kill unwinds the body with an exception that is no
/// std::exception.
class Thread {
public:
    static constexpr std::size_t defaultStackSize = std::size_t(1) << 20;

    /// The name is for reports.
    explicit Thread(std::string name = {});
    /// Kills the thread.
    ~Thread();
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// The body. The platform calls both this event and the method that starts it Run, which C++ can't.
    std::function<void()> RunEvent;

    const std::string& Name() const { return m_name; }

    /// In bytes, the guard page below not counted. Counts from the next Run on.
    std::size_t StackSize() const { return m_stackSize; }
    void setStackSize(std::size_t bytes) { m_stackSize = bytes; }

    /// Enters the body at once and returns when it has ended or its slice is over at a yield. What the body
    /// throws goes to the handler of setUncaughtThreadHandler, not to the caller. Throws
    /// ThreadAlreadyRunningException.
    void Run();

    /// Ends the thread: the body is unwound from the yield where it stands, so what it holds is given back,
    /// before Kill returns. Called by the body itself it does not return. A body that has itself called the
    /// Run that led here is unwound when control comes back to it. Harmless on a thread that does not run.
    void Kill();

    bool isRunning() const;

private:
    class Body;
    friend class ThreadScheduler;

    std::string m_name;
    std::size_t m_stackSize = defaultStackSize;
    std::shared_ptr<Body> m_body; // null before the first Run
};

namespace internal {
// Whether a yield has anything to do. Of its own for each OS thread, and so never set on a second one, where
// yields are harmless.
inline constinit thread_local bool yieldMatters = false;
void yieldWhenItMatters();
} // namespace internal

/// A point where others get their turn, to stand at the end of a loop's pass. On a thread's stack it gives
/// control back once the slice is over; on the main stack it gives each thread that waits one slice. Does
/// nothing, and throws nothing, in a destructor that an exception runs.
inline void yieldToThreads()
{
    if (internal::yieldMatters) [[unlikely]]
        internal::yieldWhenItMatters();
}

/// Gives each thread that waits one slice. Returns whether there was one. Does nothing on a thread's stack.
bool giveThreadsTheirTurn();

/// False on the stack of a thread's body.
bool onMainStack();

/// Receives what a body has thrown, on the main stack, as soon as control is back there. It must not throw.
/// Without a handler the process is terminated, as by an exception that leaves main.
void setUncaughtThreadHandler(std::function<void(Thread&, std::exception_ptr)> handler);

/// Sets, for as long as it lives, how long a slice is: it is over at every `yields`-th yield, and never for
/// 0, which is how things stand without it.
class ThreadSlice {
public:
    explicit ThreadSlice(unsigned yields);
    ~ThreadSlice();
    ThreadSlice(const ThreadSlice&) = delete;
    ThreadSlice& operator=(const ThreadSlice&) = delete;

private:
    unsigned m_before;
};

} // namespace quilvane

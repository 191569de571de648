// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/threads/Thread.h"

#include "framework/exceptions.h"
#include "framework/threads/Coroutine.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace quilvane {

namespace {

/// Thrown through a killed body. Not a std::exception, so that no handler of errors takes it for one.
struct Unwinding { };

} // namespace

/// One run of a thread. Outlives the Thread if that goes while its body is on the stack.
class Thread::Body {
public:
    explicit Body(Thread& owner)
        : thread(&owner)
        , name(owner.Name())
        , coroutine(owner.StackSize(), [this, event = owner.RunEvent] { run(event); })
    {
    }

    void run(const std::function<void()>& event)
    {
        try {
            event();
        } catch (const Unwinding&) {
        } catch (...) {
            failure = std::current_exception();
        }
    }

    Thread* thread; // null once the Thread has gone
    std::string name;
    std::exception_ptr failure;
    unsigned yields = 0; // in this slice
    bool waiting = false; // at a yield, and not below a body that it has itself started or killed
    bool killed = false;
    Coroutine coroutine;
};

/// Who runs and who waits.
class ThreadScheduler {
public:
    using Body = Thread::Body;
    using BodyPointer = std::shared_ptr<Body>;

    static ThreadScheduler& instance()
    {
        // Never destroyed, as threads may be static objects or may never be destroyed themselves.
        static ThreadScheduler& scheduler = *new ThreadScheduler;
        return scheduler;
    }

    bool onMainStack() const { return !m_current; }

    unsigned slice() const { return m_slice; }
    void setSlice(unsigned yields);

    void start(const BodyPointer& body);
    void kill(const BodyPointer& body);
    void yield();
    bool giveSlices();
    /// Unwinds the body on whose stack this is called if it was killed and is not being unwound already.
    void throwIfKilled() const;

    std::function<void(Thread&, std::exception_ptr)> uncaughtHandler;

private:
    void enter(const BodyPointer& body);
    void deliverFailures();
    void updateYieldMatters() const;

    BodyPointer m_current; // null on the main stack
    std::vector<BodyPointer> m_running; // in the order of their start
    std::vector<BodyPointer> m_failed; // whose failures have not been delivered
    unsigned m_slice = 0;
};

void ThreadScheduler::setSlice(unsigned yields)
{
    m_slice = yields;
    updateYieldMatters();
}

void ThreadScheduler::start(const BodyPointer& body)
{
    m_running.push_back(body);
    enter(body);
}

void ThreadScheduler::kill(const BodyPointer& body)
{
    body->killed = true;
    if (body->waiting)
        enter(body);
    else
        updateYieldMatters();
}

/// Runs the body for one slice. The caller holds the body: its Thread may go meanwhile.
void ThreadScheduler::enter(const BodyPointer& body)
{
    const BodyPointer caller = std::exchange(m_current, body);
    body->waiting = false;
    body->yields = 0;
    updateYieldMatters();
    body->coroutine.resume();
    m_current = caller;

    body->waiting = !body->coroutine.hasEnded();
    if (!body->waiting) {
        std::erase(m_running, body);
        if (body->failure)
            m_failed.push_back(body);
    }
    updateYieldMatters();
    if (!m_current)
        deliverFailures();
}

void ThreadScheduler::yield()
{
    if (!m_current) {
        giveSlices();
        return;
    }
    if (std::uncaught_exceptions() > 0)
        return;
    throwIfKilled();
    if (m_slice == 0 || ++m_current->yields < m_slice)
        return;
    m_current->coroutine.suspend();
    throwIfKilled();
}

bool ThreadScheduler::giveSlices()
{
    if (m_current)
        return false;
    bool any = false;
    // Over a copy: bodies end meanwhile, and a handler of what one throws may run the event loop and come
    // here again.
    const std::vector<BodyPointer> now = m_running;
    for (const BodyPointer& body : now) {
        if (body->waiting) {
            enter(body);
            any = true;
        }
    }
    return any;
}

void ThreadScheduler::deliverFailures()
{
    while (!m_failed.empty()) {
        const BodyPointer body = m_failed.front();
        m_failed.erase(m_failed.begin());
        if (!uncaughtHandler)
            std::terminate();
        if (body->thread) {
            uncaughtHandler(*body->thread, body->failure);
        } else {
            Thread gone(body->name);
            uncaughtHandler(gone, body->failure);
        }
    }
}

void ThreadScheduler::throwIfKilled() const
{
    if (m_current && m_current->killed && std::uncaught_exceptions() == 0)
        throw Unwinding();
}

void ThreadScheduler::updateYieldMatters() const
{
    if (m_current)
        internal::yieldMatters = m_slice > 0 || m_current->killed;
    else
        internal::yieldMatters
            = std::any_of(m_running.begin(), m_running.end(), [](const auto& body) { return body->waiting; });
}

Thread::Thread(std::string name)
    : m_name(std::move(name))
{
}

Thread::~Thread()
{
    if (isRunning())
        ThreadScheduler::instance().kill(m_body);
    if (m_body)
        m_body->thread = nullptr;
}

void Thread::Run()
{
    if (isRunning())
        throw ThreadAlreadyRunningException();
    if (!RunEvent)
        return;
    const auto body = std::make_shared<Body>(*this);
    m_body = body;
    // The body may destroy this object; nothing of it is used behind this line.
    ThreadScheduler::instance().start(body);
    ThreadScheduler::instance().throwIfKilled();
}

void Thread::Kill()
{
    if (const auto body = m_body; isRunning())
        ThreadScheduler::instance().kill(body); // here too what is unwound may destroy this object
    ThreadScheduler::instance().throwIfKilled();
}

bool Thread::isRunning() const
{
    return m_body && !m_body->coroutine.hasEnded();
}

void internal::yieldWhenItMatters()
{
    ThreadScheduler::instance().yield();
}

bool giveThreadsTheirTurn()
{
    return ThreadScheduler::instance().giveSlices();
}

bool onMainStack()
{
    return ThreadScheduler::instance().onMainStack();
}

void setUncaughtThreadHandler(std::function<void(Thread&, std::exception_ptr)> handler)
{
    ThreadScheduler::instance().uncaughtHandler = std::move(handler);
}

ThreadSlice::ThreadSlice(unsigned yields)
    : m_before(ThreadScheduler::instance().slice())
{
    ThreadScheduler::instance().setSlice(yields);
}

ThreadSlice::~ThreadSlice()
{
    ThreadScheduler::instance().setSlice(m_before);
}

} // namespace quilvane

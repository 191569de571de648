// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/threads/Thread.h"

#include "framework/EventGuard.h"
#include "framework/exceptions.h"

#include <exception>

namespace quilvane {

namespace {

/// Unwinds a killed body, and the bodies that it has started itself.
struct Unwinding {
    const Thread* killed;
};

} // namespace

void Thread::Run()
{
    if (m_running)
        throw ThreadAlreadyRunningException();
    if (!RunEvent)
        return;
    try {
        runBody();
    } catch (const Unwinding& unwinding) {
        if (unwinding.killed != this)
            throw;
    } catch (const std::exception&) {
        reportFailedPart(m_name + "_Run");
    }
}

void Thread::runBody()
{
    struct Running {
        bool& flag;
        ~Running() { flag = false; }
    };
    m_running = true;
    const Running running{ m_running };
    RunEvent();
}

void Thread::Kill()
{
    if (m_running)
        throw Unwinding{ this };
}

} // namespace quilvane

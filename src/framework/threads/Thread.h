// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <utility>

namespace quilvane {

/// A worker of the program: a body that can be ended from any depth of its calls. It runs on its caller's
/// stack and to its end, so that nothing needs a lock.
///
/// Bind RunEvent, call Run. When the body has returned, thrown or was killed, Run may be called again. The
/// body must not run the event loop, and the thread must outlive its body.
class Thread {
public:
    /// The name is for reports.
    explicit Thread(std::string name = {})
        : m_name(std::move(name))
    {
    }
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// The body. The platform calls both this event and the method that starts it Run; in C++ they need
    /// different names.
    std::function<void()> RunEvent;

    int Priority = 5; // without effect, since the body does not compete with its caller

    /// Returns when the body has ended. An exception in the body ends only the body: it is reported here, and
    /// the caller goes on. Throws ThreadAlreadyRunningException.
    void Run();

    /// Ends the thread. Called from inside of the body it does not return: it unwinds the body with an
    /// exception that is no std::exception, so that destructors run; a `catch (...)` in the body must throw
    /// it again. Does nothing for a thread that does not run.
    void Kill();

private:
    void runBody();

    std::string m_name;
    bool m_running = false;
};

} // namespace quilvane

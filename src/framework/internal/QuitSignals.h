// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/files/FileDescriptor.h"

#include <array>
#include <csignal>
#include <functional>
#include <memory>

class QSocketNotifier;

namespace quilvane {

/// Turns the signals that ask a process to end, SIGTERM, SIGINT and SIGHUP, into a call from the event loop.
/// A second signal of the same kind ends the process at once. Signals that the parent process has ignored, as
/// nohup does, stay ignored. There may be one object at a time; its destructor restores the signals.
class QuitSignals {
public:
    explicit QuitSignals(const std::function<void()>& quit);
    ~QuitSignals();
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;

private:
    static constexpr std::array numbers{ SIGTERM, SIGINT, SIGHUP };

    FileDescriptor m_arrived; // readable after a signal has come
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::array<struct sigaction, numbers.size()> m_before{};
};

} // namespace quilvane

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
/// The second one of a kind ends the process at once. What the parent has ignored, as nohup does, stays
/// ignored. One at a time; gives the signals back when it goes.
class QuitSignals {
public:
    explicit QuitSignals(const std::function<void()>& quit);
    ~QuitSignals();
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;

private:
    static constexpr std::array numbers{ SIGTERM, SIGINT, SIGHUP };

    FileDescriptor m_arrived; // readable once one has come
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::array<struct sigaction, numbers.size()> m_before{};
};

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/internal/QuitSignals.h"

#include <QSocketNotifier>

#include <cerrno>
#include <cstdint>

#include <sys/eventfd.h>
#include <unistd.h>

namespace quilvane {

namespace {

volatile sig_atomic_t eventFile = -1;

/// May only call functions that signal-safety(7) lists.
void noteSignal(int)
{
    const int errorNumber = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(eventFile, &one, sizeof one);
    errno = errorNumber;
}

} // namespace

QuitSignals::QuitSignals(const std::function<void()>& quit)
    : m_arrived(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!m_arrived.isOpen())
        return; // too many open files: the signals keep their effect
    eventFile = m_arrived.number();
    m_notifier = std::make_unique<QSocketNotifier>(m_arrived.number(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this, quit] {
        std::uint64_t count = 0;
        if (::read(m_arrived.number(), &count, sizeof count) > 0)
            quit();
    });
    struct sigaction action { };
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART | int(SA_RESETHAND);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        ::sigaction(numbers[i], nullptr, &m_before[i]);
        if (m_before[i].sa_handler != SIG_IGN)
            ::sigaction(numbers[i], &action, nullptr);
    }
}

QuitSignals::~QuitSignals()
{
    if (!m_arrived.isOpen())
        return;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        ::sigaction(numbers[i], &m_before[i], nullptr);
}

} // namespace quilvane

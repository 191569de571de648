// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/threads/Timer.h"

#include "framework/EventGuard.h"

#include <QTimer>

namespace quilvane {

struct Timer::Native {
    QTimer timer;
};

Timer::Timer(std::string name, int period)
    : m_native(std::make_unique<Native>())
{
    m_native->timer.setInterval(period);
    QObject::connect(&m_native->timer, &QTimer::timeout, [this, handlerName = name + "_Action"] {
        if (Action && !eventsMustWait())
            runGuarded(handlerName, Action);
    });
}

Timer::~Timer() = default;

bool Timer::Enabled() const
{
    return m_native->timer.isActive();
}

void Timer::setEnabled(bool enabled)
{
    if (enabled && !Enabled())
        m_native->timer.start();
    else if (!enabled)
        m_native->timer.stop();
}

} // namespace quilvane

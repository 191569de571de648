// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/Slider.h"

#include <algorithm>

namespace quilvane {

Slider::Slider(Window& window, std::string_view name)
    : RectControl(window, name, ControlKind::Slider)
{
}

void Slider::setMaximum(std::int64_t maximum)
{
    m_maximum = maximum;
    setValue(m_value);
}

void Slider::setValue(std::int64_t value)
{
    const std::int64_t bounded = std::clamp<std::int64_t>(value, 0, std::max<std::int64_t>(m_maximum, 0));
    if (bounded == m_value)
        return;
    m_value = bounded;
    fire("ValueChanged", ValueChanged);
}

} // namespace quilvane

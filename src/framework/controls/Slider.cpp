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
    m_value = bounded(m_value);
}

void Slider::setValue(std::int64_t value)
{
    if (bounded(value) == m_value)
        return;
    m_value = bounded(value);
    fire("ValueChanged", ValueChanged);
}

std::int64_t Slider::bounded(std::int64_t value) const
{
    return std::clamp<std::int64_t>(value, 0, std::max<std::int64_t>(m_maximum, 0));
}

} // namespace quilvane

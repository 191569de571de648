// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

#include <cstdint>

namespace quilvane {

/// A counter with an event. It always lies outside of the window and has no widget.
class Slider : public RectControl {
public:
    Slider(Window& window, std::string_view name);

    /// The value has been changed. Not fired when a new maximum lowers it.
    std::function<void()> ValueChanged;

    /// May be -1, for a document without pages: the value then stays at 0.
    void setMaximum(std::int64_t maximum);

    std::int64_t Value() const { return m_value; }
    /// Fires ValueChanged before it returns, if the value is a new one. Kept between 0 and the maximum.
    void setValue(std::int64_t value);

private:
    std::int64_t bounded(std::int64_t value) const;

    std::int64_t m_maximum = 100;
    std::int64_t m_value = 0;
};

} // namespace quilvane

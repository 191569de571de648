// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace quilvane {

/// Fires Action from the event loop periodically while it is enabled; during a handler only if that handler
/// runs the event loop itself.
class Timer {
public:
    /// `period` is in milliseconds.
    Timer(std::string name, int period);
    ~Timer();

    std::function<void()> Action;

    static constexpr int RunMode = 2; // periodic; there is no other mode

    bool Enabled() const;
    void setEnabled(bool enabled);

private:
    struct Native;
    std::unique_ptr<Native> m_native;
};

} // namespace quilvane

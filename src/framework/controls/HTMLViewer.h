// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

#include <functional>
#include <string>
#include <string_view>

namespace quilvane {

/// The place of a web viewer, parked outside of the window, without a network. Nothing is ever scanned in
/// what it would load, and it is given every address that is half typed: loading those would tell strangers'
/// servers what the user types, and ask for each page twice. So every load is one that fails, for which there
/// is no event.
class HTMLViewer : public RectControl {
public:
    HTMLViewer(Window& window, std::string_view name);

    /// Where a viewer that loads pages would tell that one is here, and how much of it, 0 to 100. Not fired.
    std::function<void(const std::string& url)> DocumentComplete;
    std::function<void(const std::string& url, int percentage)> DocumentProgressChanged;

    void LoadURL(std::string_view) { }

    /// Empty, as on a page that was never loaded.
    std::string EvaluateJavaScriptMBS(std::string_view) const { return {}; }
};

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

#include <functional>
#include <string>
#include <string_view>

namespace quilvane {

/// Stands for a web viewer. It lies outside of the window and loads nothing. What it would load is never
/// scanned, and it gets every half-typed address: to load those would tell foreign servers what the user
/// types, and would ask for each page twice. So every load fails, for which there is no event.
class HTMLViewer : public RectControl {
public:
    HTMLViewer(Window& window, std::string_view name);

    /// A page was loaded; a part of it was loaded, `percentage` from 0 to 100. Never fired, since nothing is
    /// loaded.
    std::function<void(const std::string& url)> DocumentComplete;
    std::function<void(const std::string& url, int percentage)> DocumentProgressChanged;

    void LoadURL(std::string_view) { }

    /// Empty, as on a page that was never loaded.
    std::string EvaluateJavaScriptMBS(std::string_view) const { return {}; }
};

} // namespace quilvane

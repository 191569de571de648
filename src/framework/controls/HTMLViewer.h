// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/controls/RectControl.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace quilvane {

/// Loads web pages in the background and gives their text. Always parked outside of the window: nothing is
/// shown, and so no browser engine is behind it.
///
/// LoadURL may be called with every letter that is typed. It waits until the address has stood for a moment,
/// and there is one transfer at a time: a new address ends the transfer of the one before. A page that can't
/// be loaded leaves everything as it was, without an event. The transfer ends with the control, which does
/// not wait for the server.
class HTMLViewer : public RectControl {
public:
    HTMLViewer(Window& window, std::string_view name);
    ~HTMLViewer() override;

    /// A page is here; `url` is where all redirects have led.
    std::function<void(const std::string& url)> DocumentComplete;
    /// 0 to 100. Only for pages whose server says how long they are.
    std::function<void(const std::string& url, int percentage)> DocumentProgressChanged;

    /// Returns at once. What is loading is dropped; the empty address loads nothing else in its place.
    void LoadURL(std::string url);

    /// The text of the page for "document.body.innerText", empty before the first page. That text is all that
    /// the program asks for, and nothing is scanned in it, which is no reason to carry an engine for scripts:
    /// the result of any other is empty.
    std::string EvaluateJavaScriptMBS(std::string_view script) const;

private:
    struct Native;

    void startLoading();
    void completed(std::int64_t load, const std::string& url, std::string text);
    void progressed(std::int64_t load, const std::string& url, int percentage);

    std::string m_url; // wanted
    std::int64_t m_load = 0; // counts the calls of LoadURL, to know what one has overtaken
    std::string m_text; // of the page loaded last
    std::unique_ptr<Native> m_loader;
};

} // namespace quilvane

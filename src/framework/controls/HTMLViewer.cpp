// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/controls/HTMLViewer.h"

#include "documents/html/htmlText.h"
#include "framework/EventGuard.h"
#include "framework/net/fetch.h"

#include <QTimer>

#include <algorithm>
#include <exception>
#include <system_error>
#include <thread>
#include <utility>

namespace quilvane {

namespace {

constexpr int settlingTime = 300; // ms for which an address must stand; typists are faster
constexpr std::uint64_t largestPage = std::uint64_t(16) << 20; // bytes; no one reads more of a text

} // namespace

struct HTMLViewer::Native {
    QTimer settling; // on the main thread, where the worker's results are handed over in its name
    // Touches nothing of the control: what it needs is its own copy, what it finds goes through the event
    // loop. Goes first, and its destructor ends the transfer, so nothing comes after the control has gone.
    std::jthread worker;
};

HTMLViewer::HTMLViewer(Window& window, std::string_view name)
    : RectControl(window, name, ControlKind::HTMLViewer)
    , m_loader(std::make_unique<Native>())
{
    m_loader->settling.setSingleShot(true);
    m_loader->settling.setInterval(settlingTime);
    QObject::connect(&m_loader->settling, &QTimer::timeout, [this] { startLoading(); });
}

HTMLViewer::~HTMLViewer() = default;

void HTMLViewer::LoadURL(std::string url)
{
    ++m_load;
    m_url = std::move(url);
    m_loader->worker.request_stop();
    if (m_url.empty())
        m_loader->settling.stop();
    else
        m_loader->settling.start();
}

std::string HTMLViewer::EvaluateJavaScriptMBS(std::string_view script) const
{
    return script == "document.body.innerText" ? m_text : std::string();
}

void HTMLViewer::startLoading()
{
    FetchOptions options = FetchOptions::standard();
    options.largestBody = std::min(options.largestBody, largestPage);
    QObject* const mainThread = &m_loader->settling;
    const auto handOver = [this, mainThread](std::function<void()> event) {
        const auto deliver = [this, event = std::move(event)] {
            if (!putOff(this, event))
                event();
        };
        QMetaObject::invokeMethod(mainThread, deliver, Qt::QueuedConnection);
    };
    options.progress = [this, handOver, load = m_load, url = m_url](int percentage) {
        handOver([this, load, url, percentage] { progressed(load, url, percentage); });
    };
    const auto work = [this, handOver, options = std::move(options), load = m_load, url = m_url](
                          const std::stop_token& stop) {
        try {
            FetchedPage page = fetch(url, options, stop);
            std::string text = htmlBodyText(page.body, MailtoLinks::Omit, page.charset, stop);
            handOver([this, load, page = std::move(page.url), text = std::move(text)]() mutable {
                completed(load, page, std::move(text));
            });
        } catch (const std::exception&) {
            // A half-typed address has no page as a rule, and nobody waits for this one.
        }
    };
    try {
        // The worker before was told to stop when the address changed, and is waited for here.
        m_loader->worker = std::jthread(work);
    } catch (const std::system_error&) {
        // The system gives no thread: as good as no network.
    }
}

void HTMLViewer::completed(std::int64_t load, const std::string& url, std::string text)
{
    if (load != m_load)
        return;
    m_text = std::move(text);
    if (DocumentComplete)
        fire("DocumentComplete", [&] { DocumentComplete(url); });
}

void HTMLViewer::progressed(std::int64_t load, const std::string& url, int percentage)
{
    if (load == m_load && DocumentProgressChanged)
        fire("DocumentProgressChanged", [&] { DocumentProgressChanged(url, percentage); });
}

} // namespace quilvane

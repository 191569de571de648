// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/net/URLConnection.h"

#include "framework/Application.h"
#include "framework/EventGuard.h"
#include "framework/dialogs/Desktop.h"
#include "framework/exceptions.h"
#include "framework/keepWindowPainted.h"
#include "framework/net/fetch.h"

#include <atomic>
#include <chrono>
#include <future>
#include <optional>
#include <system_error>
#include <thread>

namespace quilvane {

namespace {

constexpr std::chrono::seconds silentWait(1); // most pages have come by then, and a dialog would only flash
constexpr std::chrono::milliseconds lookEvery(50);

bool isHere(const std::future<std::string>& body, std::chrono::milliseconds wait)
{
    return body.wait_for(wait) == std::future_status::ready;
}

} // namespace

std::string URLConnection::SendSync(std::string_view, std::string_view url, int)
{
    const std::string address(url); // the text of `url` may change while the dialog is open
    FetchOptions options = FetchOptions::standard();
    std::atomic<std::uint64_t> received = 0;
    options.progress = [&received](std::uint64_t bytes) { received = bytes; };

    std::packaged_task<std::string(std::stop_token)> transfer(
        [&](const std::stop_token& stop) { return fetch(address, options, stop); });
    std::future<std::string> body = transfer.get_future();
    // However this function ends, the transfer is stopped and joined first. That takes no time, since a stop
    // request wakes it from every wait.
    std::jthread worker;
    try {
        worker = std::jthread(std::move(transfer));
    } catch (const std::system_error&) {
        throw ConnectionException(address, "the system gives the program no thread for it");
    }

    const auto start = std::chrono::steady_clock::now();
    while (!isHere(body, lookEvery)) {
        keepWindowPainted();
        if (std::chrono::steady_clock::now() - start < silentWait)
            continue;
        const EventsHeld held;
        const bool wanted
            = Desktop::current().waitForPage(hostOf(address), [&]() -> std::optional<std::uint64_t> {
                  return isHere(body, std::chrono::milliseconds::zero()) ? std::nullopt
                                                                         : std::optional(received.load());
              });
        if (!wanted)
            throw CancelUnwinding();
        // Only the end of the program closes the dialog before the page has come. This ends the handler then.
        if (!isHere(body, std::chrono::milliseconds::zero()))
            Application::endHandlerIfQuitting();
    }
    return body.get();
}

} // namespace quilvane

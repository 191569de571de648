// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/EventGuard.h"

#include "framework/Application.h"
#include "framework/controls/Window.h"
#include "framework/dialogs/Desktop.h"
#include "framework/keepWindowPainted.h"
#include "framework/logLine.h"

#include <QTimer>

#include <deque>
#include <exception>
#include <new>
#include <utility>

namespace quilvane {

namespace {

struct PutOffEvent {
    const void* owner;
    std::function<void()> deliver;
};

int depth = 0;
bool painting = false;
int holds = 0;
std::deque<PutOffEvent> putOffEvents;
std::function<std::string(const std::string&)> failureWords;

struct Failure {
    int depth = 0; // of the handler
    std::string what;
    bool operator==(const Failure&) const = default;
};

Failure toldOfPart; // the last one

class DepthCount {
public:
    DepthCount()
    {
        if (depth == 0) {
            internal::eventLoopTurned();
            toldOfPart = {};
        }
        ++depth;
    }
    ~DepthCount()
    {
        --depth;
        if (depth == 0)
            WindowList::instance().deleteClosedSoon();
    }
};

/// One event at a time. The next one is queued before this one is delivered: if its handler runs the event
/// loop, that delivers the next ones.
void deliverPutOffSoon()
{
    QTimer::singleShot(0, [] {
        if (eventsMustWait() || putOffEvents.empty())
            return;
        const PutOffEvent event = std::move(putOffEvents.front());
        putOffEvents.pop_front();
        if (!putOffEvents.empty())
            deliverPutOffSoon();
        event.deliver();
    });
}

/// What happened, in words for the user.
std::string describeCurrentException()
{
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return "There is not enough memory to go on with this.";
    } catch (const std::exception& error) {
        const std::string what = error.what();
        return what.empty() ? "Something went wrong." : what;
    }
}

/// The program's own words about the failed handler.
std::string wordsFor(const std::string& handlerName)
{
    try {
        return failureWords ? failureWords(handlerName) : std::string();
    } catch (const std::exception& error) {
        logLine("The report of " + handlerName + " is incomplete: " + error.what());
        return {};
    }
}

enum class Failed { Handler, PartOfOne };

void report(const std::string& name, Failed failed)
{
    try {
        const std::string what = describeCurrentException();
        logLine(name + ": " + what);
        if (Application::isEndedFromOutside())
            return;
        const std::string words = wordsFor(name); // cleans up, too
        const Failure failure{ depth, what };
        if (failed == Failed::PartOfOne && std::exchange(toldOfPart, failure) == failure)
            return;
        const EventsHeld held;
        Desktop::current().showError(what, words);
    } catch (const std::exception&) { // from here it would pass through Qt
        logLine("An error could not be reported.");
    }
}

} // namespace

void runGuarded(const std::string& name, const std::function<void()>& handler)
{
    if (painting)
        return;
    const DepthCount counted;
    try {
        try {
            handler();
        } catch (const std::exception&) {
            reportCurrentException(name);
        }
    } catch (const CancelUnwinding&) {
    } catch (const QuitUnwinding&) {
    }
}

int handlerDepth()
{
    return depth;
}

bool isOnlyPainting()
{
    return painting;
}

bool eventsMustWait()
{
    return painting || holds > 0;
}

bool putOff(const void* owner, std::function<void()> event)
{
    if (!eventsMustWait())
        return false;
    putOffEvents.push_back({ owner, std::move(event) });
    return true;
}

void forgetPutOff(const void* owner)
{
    std::erase_if(putOffEvents, [owner](const PutOffEvent& event) { return event.owner == owner; });
}

OnlyPainting::OnlyPainting()
{
    painting = true;
}

OnlyPainting::~OnlyPainting()
{
    painting = false;
    if (!putOffEvents.empty())
        deliverPutOffSoon();
}

EventsHeld::EventsHeld()
{
    ++holds;
}

EventsHeld::~EventsHeld()
{
    --holds;
    if (!putOffEvents.empty())
        deliverPutOffSoon();
}

void reportCurrentException(const std::string& handlerName)
{
    report(handlerName, Failed::Handler);
}

void reportFailedPart(const std::string& name)
{
    report(name, Failed::PartOfOne);
}

void setFailureWords(std::function<std::string(const std::string& handlerName)> words)
{
    failureWords = std::move(words);
}

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

namespace quilvane {

/// Runs `handler`, the program's handler of one event. An exception ends only this handler and is reported to
/// the user in one dialog, or only to the log once a signal or the desktop has ended the program; the caller
/// goes on as if the handler had returned. `name` is the handler's, for the log and setFailureWords().
///
/// Handlers nest (a dialog or DoEvents runs the event loop inside of one); each ends on its own. While the
/// windows are only being painted no handler runs: an event that must not be lost has to be put off
/// (putOff()) instead.
void runGuarded(const std::string& name, const std::function<void()>& handler);

/// Ends a handler that is running when the program quits; runGuarded catches it and reports nothing. Not a
/// std::exception, so that no catch block takes it for an error.
struct QuitUnwinding { };

/// The same for a handler whose work the user has cancelled.
struct CancelUnwinding { };

/// How many handlers are on the stack now; 0 in the bare event loop.
int handlerDepth();

/// Whether the windows are only being painted while a handler works, so that no event may reach the program.
bool isOnlyPainting();

/// Whether the user's actions must wait: the windows are only being painted, or events are held.
bool eventsMustWait();

/// While events must wait: keeps `event` for a later turn of the event loop and returns true. Else returns
/// false. `owner` is the object to which the event belongs; its destructor must call forgetPutOff().
bool putOff(const void* owner, std::function<void()> event);
void forgetPutOff(const void* owner);

/// While it exists, the windows are only being painted.
class OnlyPainting {
public:
    OnlyPainting();
    ~OnlyPainting();
    OnlyPainting(const OnlyPainting&) = delete;
    OnlyPainting& operator=(const OnlyPainting&) = delete;
};

/// While it exists, timers do not fire, and the user's actions in the program's windows are put off. Used
/// while a modal dialog is open: the handler that has opened it must find its data unchanged. The dialog
/// keeps mouse and keyboard from the windows, but not the accessibility bus.
class EventsHeld {
public:
    EventsHeld();
    ~EventsHeld();
    EventsHeld(const EventsHeld&) = delete;
    EventsHeld& operator=(const EventsHeld&) = delete;
};

/// Reports the exception in flight as runGuarded does. To be called inside of a catch block.
void reportCurrentException(const std::string& handlerName);
/// The same for a part of a handler, which goes on and may do that part again. Of equal failures one after
/// the other the user is told once.
void reportFailedPart(const std::string& name);

/// Sets the function that cleans up after a failed handler and returns the second part of its report: what
/// has ended, and what became of its work. The handler's name itself is only logged, and so is what `words`
/// throws.
void setFailureWords(std::function<std::string(const std::string& handlerName)> words);

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

namespace quilvane {

/// Runs `handler`, through which one event enters the program. What it throws ends this handler alone and is
/// reported to the user in one dialog, and to the log with `name`; the caller goes on as if the handler had
/// returned. Once a signal or the desktop has ended the program the log alone is told.
///
/// Handlers nest (a dialog or DoEvents runs the event loop inside of one); each ends on its own. While the
/// windows are only being painted nothing is run: an event that must not be lost is put off first.
void runGuarded(const std::string& name, const std::function<void()>& handler);

/// Thrown through a handler that the quitting of the program has overtaken; runGuarded ends it without a
/// word. Not a std::exception, so that no handler of errors takes it for one.
struct QuitUnwinding { };

/// The same through a handler whose work the user has cancelled.
struct CancelUnwinding { };

/// How many handlers are on the stack now; 0 in the bare event loop.
int handlerDepth();

/// Whether the windows are only being painted while a handler works, so that no event may reach the program.
bool isOnlyPainting();

/// Whether what the user does now is to wait: the windows are only being painted, or events are held.
bool eventsMustWait();

/// While events must wait: keeps `event` for a later turn of the event loop and returns true. Else returns
/// false. What an event is put off for, `owner`, forgets it when it goes itself.
bool putOff(const void* owner, std::function<void()> event);
void forgetPutOff(const void* owner);

/// The windows are only being painted while it lives.
class OnlyPainting {
public:
    OnlyPainting();
    ~OnlyPainting();
    OnlyPainting(const OnlyPainting&) = delete;
    OnlyPainting& operator=(const OnlyPainting&) = delete;
};

/// Holds all timers and what the user does to a window of the program while it lives, as long as a modal
/// dialog stands: the handler that has opened it still runs, and is to meet its data as it has left them. The
/// desktop keeps mouse and keyboard from the windows by itself; the accessibility bus reaches them.
class EventsHeld {
public:
    EventsHeld();
    ~EventsHeld();
    EventsHeld(const EventsHeld&) = delete;
    EventsHeld& operator=(const EventsHeld&) = delete;
};

/// Reports the exception in flight as runGuarded does. To be called inside of a catch block.
void reportCurrentException(const std::string& handlerName);

/// What the program does about a failed handler, and then tells of it: `words` gives the second part of the
/// report, what has ended and what became of its work. The name of the handler itself goes to the log alone.
/// So does what `words` throws.
void setFailureWords(std::function<std::string(const std::string& handlerName)> words);

} // namespace quilvane

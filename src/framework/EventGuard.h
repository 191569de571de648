// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

namespace quilvane {

/// Runs `handler`, through which one event enters the program. What it throws ends this handler alone and is
/// reported to the user in one dialog that names `name`; the caller goes on as if the handler had returned.
///
/// Handlers nest (a dialog or DoEvents runs the event loop inside of one); each ends on its own.
void runGuarded(const std::string& name, const std::function<void()>& handler);

/// Thrown through a handler that the quitting of the program has overtaken; runGuarded ends it without a
/// word. Not a std::exception, so that no handler of errors takes it for one.
struct QuitUnwinding { };

/// The same through a handler whose work the user has cancelled.
struct CancelUnwinding { };

/// How many handlers are on the stack now; 0 in the bare event loop.
int handlerDepth();

/// Reports the exception in flight the way runGuarded does. To be called inside of a catch block.
void reportCurrentException(const std::string& handlerName);

} // namespace quilvane

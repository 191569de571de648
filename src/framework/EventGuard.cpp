// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/EventGuard.h"

#include "framework/controls/Window.h"
#include "framework/dialogs/Desktop.h"

#include <exception>
#include <new>

namespace quilvane {

namespace {

int depth = 0;

class DepthCount {
public:
    DepthCount() { ++depth; }
    ~DepthCount()
    {
        --depth;
        if (depth == 0)
            WindowList::instance().deleteClosedSoon();
    }
};

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

} // namespace

void runGuarded(const std::string& name, const std::function<void()>& handler)
{
    const DepthCount counted;
    try {
        handler();
    } catch (const std::exception&) {
        reportCurrentException(name);
    } catch (const CancelUnwinding&) {
    } catch (const QuitUnwinding&) {
    }
}

int handlerDepth()
{
    return depth;
}

void reportCurrentException(const std::string& handlerName)
{
    Desktop::current().showError(describeCurrentException(),
        "This happened in " + handlerName
            + ", which has ended there. What it had done before stands; otherwise the list is untouched.");
}

} // namespace quilvane

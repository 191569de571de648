// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace quilvane {

/// A function on a stack of its own, which can be left in the middle and gone on with. Threads are made of
/// it.
///
/// Made with its stack; entered by the first resume(). It must not go while it is suspended: whoever holds it
/// lets the function run to its end first.
class Coroutine {
public:
    /// `stackSize` is in bytes; below it lies a page that can't be touched, so that an overflow is a crash
    /// and nothing worse. `function` must not throw. Throws std::bad_alloc if there is no room for the stack.
    Coroutine(std::size_t stackSize, std::function<void()> function);
    ~Coroutine();
    Coroutine(const Coroutine&) = delete;
    Coroutine& operator=(const Coroutine&) = delete;

    /// Runs the function up to its next suspend() or its end. From any stack but its own; not once it has
    /// ended.
    void resume();

    /// Goes back to where resume() was called. On the function's stack only.
    void suspend();

    bool hasEnded() const;

private:
    struct Native;
    std::unique_ptr<Native> m_native;
};

} // namespace quilvane

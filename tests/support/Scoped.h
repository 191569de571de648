// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

namespace quilvane {

/// Changes something that the whole process shares, and restores it in its destructor. Tests change shared
/// state only with this.
class Scoped {
public:
    /// Changes a variable.
    template <typename Value>
    Scoped(Value& variable, std::type_identity_t<Value> value)
        : m_putBack([&variable, before = std::exchange(variable, std::move(value))] { variable = before; })
    {
    }

    /// Calls `set` with `value`, and at the end with `before`.
    template <typename Set, typename Value>
    Scoped(Set set, Value before, const std::type_identity_t<Value>& value)
    {
        set(value);
        m_putBack = [set, before = std::move(before)] { set(before); };
    }

    ~Scoped() { m_putBack(); }
    Scoped(const Scoped&) = delete;
    Scoped& operator=(const Scoped&) = delete;

private:
    std::function<void()> m_putBack;
};

inline Scoped environmentVariable(const char* name, const std::string& value)
{
    using Value = std::optional<std::string>;
    const char* const before = std::getenv(name);
    return Scoped([name](const Value& v) { v ? ::setenv(name, v->c_str(), 1) : ::unsetenv(name); },
        before ? Value(before) : Value(), value);
}

/// The process can't make a file larger than that, like on a full disk.
inline Scoped largestFile(rlim_t bytes)
{
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    return Scoped(
        [](const rlimit& limit) { ::setrlimit(RLIMIT_FSIZE, &limit); }, before, { bytes, before.rlim_max });
}

/// Tests may run as root, to whom nothing is forbidden; so root becomes another user.
inline Scoped notRoot()
{
    constexpr uid_t nobody = 65534;
    const uid_t user = ::geteuid();
    return Scoped([](uid_t now) { EXPECT_EQ(::seteuid(now), 0); }, user, user == 0 ? nobody : user);
}

} // namespace quilvane

// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <utility>

namespace quilvane {

/// Throws a NilObjectException with this reason.
[[noreturn]] void throwNilObject(const std::string& why);

/// A shared reference that may be nil. Following a nil one throws NilObjectException instead of crashing.
///
/// A factory that finds nothing returns Ref<T>::nil(why); a caller that follows it without a test then gets
/// an exception with that reason, so the user reads "Permission denied" and not only "nil".
template <typename T>
class Ref {
public:
    Ref() = default;
    Ref(std::shared_ptr<T> object)
        : m_object(std::move(object))
    {
    }

    static Ref nil(std::string why)
    {
        Ref result;
        result.m_whyNil = std::move(why);
        return result;
    }

    template <typename... Arguments>
    static Ref make(Arguments&&... arguments)
    {
        return Ref(std::make_shared<T>(std::forward<Arguments>(arguments)...));
    }

    /// The reason that the factory gave; empty if it gave none or the reference is not nil.
    const std::string& whyNil() const { return m_whyNil; }

    explicit operator bool() const { return static_cast<bool>(m_object); }

    T* operator->() const { return &**this; }

    T& operator*() const
    {
        if (!m_object)
            throwNilObject(m_whyNil);
        return *m_object;
    }

private:
    std::shared_ptr<T> m_object;
    std::string m_whyNil;
};

} // namespace quilvane

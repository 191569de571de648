// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quilvane {

/// Base of everything the toolkit layer throws. what() is one or two sentences for the user, UTF-8: what
/// happened, to which file, and the system's reason.
class RuntimeException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A nil Ref was followed. `why` is the reason that its factory gave; empty if it gave none.
class NilObjectException : public RuntimeException {
public:
    explicit NilObjectException(const std::string& why = {});
};

/// An index lay outside a list or an array.
class OutOfBoundsException : public RuntimeException {
public:
    using RuntimeException::RuntimeException;
    /// `what` names the elements, such as "list row".
    OutOfBoundsException(std::string_view what, std::size_t index, std::size_t count);
};

/// The text given as a search pattern is no valid regular expression.
class RegExSearchPatternException : public RuntimeException {
public:
    /// `offset` is the 0-based byte of `pattern` at which compiling stopped.
    RegExSearchPatternException(std::string_view pattern, std::string_view reason, std::size_t offset);
};

/// A valid pattern that could not be run to its end over a text, as it needed too much time or memory.
class RegExException : public RuntimeException {
public:
    RegExException(std::string_view pattern, std::string_view reason);
};

/// A file or folder could not be read, written or made.
class IOException : public RuntimeException {
public:
    using RuntimeException::RuntimeException;

    /// "The file "x" could not be <failed>: <text of errorNumber>." `errorNumber` is an errno value.
    IOException(std::string_view path, std::string_view failed, int errorNumber);

    /// "The folder "x" could not be created: <text of errorNumber>."
    static IOException folderNotCreated(std::string_view path, int errorNumber);

    /// "The folder "x" could not be listed: <text of errorNumber>."
    static IOException folderNotListed(std::string_view path, int errorNumber);
};

/// A page of the web could not be loaded.
class ConnectionException : public RuntimeException {
public:
    /// "The web page "x" could not be loaded: <reason>."
    ConnectionException(std::string_view address, std::string_view reason);
};

/// Something needs more memory than the machine can give.
class OutOfMemoryException : public RuntimeException {
public:
    using RuntimeException::RuntimeException;
};

/// Thread::Run was called on a thread that still runs.
class ThreadAlreadyRunningException : public RuntimeException {
public:
    ThreadAlreadyRunningException();
};

} // namespace quilvane

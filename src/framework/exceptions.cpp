// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/exceptions.h"

#include "framework/Ref.h"
#include "framework/files/displayName.h"

#include <system_error>

namespace quilvane {

namespace {

constexpr std::size_t longestQuote = 80; // bytes; a pattern may be a long pasted text

std::string quote(std::string_view text)
{
    if (text.size() <= longestQuote)
        return '"' + displayPath(text) + '"';
    std::size_t end = longestQuote;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) // never cut inside a character
        --end;
    return '"' + displayPath(text.substr(0, end)) + "…\"";
}

std::string because(int errorNumber)
{
    return ": " + std::generic_category().message(errorNumber) + '.';
}

} // namespace

NilObjectException::NilObjectException(const std::string& why)
    : RuntimeException(why.empty() ? "Something that is needed here does not exist." : why)
{
}

void throwNilObject(const std::string& why)
{
    throw NilObjectException(why);
}

OutOfBoundsException::OutOfBoundsException(std::string_view what, std::size_t index, std::size_t count)
    : RuntimeException("There is no " + std::string(what) + " number " + std::to_string(index)
        + ": there are " + std::to_string(count) + ", and the first has number 0.")
{
}

RegExSearchPatternException::RegExSearchPatternException(
    std::string_view pattern, std::string_view reason, std::size_t offset)
    : RuntimeException("The search pattern " + quote(pattern) + " is not valid: " + std::string(reason)
        + ", at position " + std::to_string(offset) + ".")
{
}

RegExException::RegExException(std::string_view pattern, std::string_view reason)
    : RuntimeException(
        "The search for the pattern " + quote(pattern) + " was given up: " + std::string(reason) + ".")
{
}

IOException::IOException(std::string_view path, std::string_view failed, int errorNumber)
    : RuntimeException(
        "The file \"" + displayPath(path) + "\" could not be " + std::string(failed) + because(errorNumber))
{
}

IOException IOException::folderNotCreated(std::string_view path, int errorNumber)
{
    return IOException(
        "The folder \"" + displayPath(path) + "\" could not be created" + because(errorNumber));
}

IOException IOException::folderNotListed(std::string_view path, int errorNumber)
{
    return IOException("The folder \"" + displayPath(path) + "\" could not be listed" + because(errorNumber));
}

ConnectionException::ConnectionException(std::string_view address, std::string_view reason)
    : RuntimeException(
        "The web page " + quote(address) + " could not be loaded: " + std::string(reason) + '.')
{
}

ThreadAlreadyRunningException::ThreadAlreadyRunningException()
    : RuntimeException("This is still running, so it can't be started again.")
{
}

} // namespace quilvane

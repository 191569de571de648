// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/net/internal/CurlLibrary.h"

#include "framework/exceptions.h"

#include <dlfcn.h>

#include <new>
#include <string>

namespace quilvane {

namespace {

void* found(void* result)
{
    if (!result)
        throw RuntimeException("Web pages can't be loaded: " + std::string(dlerror()) + '.');
    return result;
}

} // namespace

const CurlLibrary& CurlLibrary::instance()
{
    static const CurlLibrary library;
    return library;
}

CurlLibrary::CurlLibrary()
    : m_library(found(dlopen("libcurl.so.4", RTLD_NOW | RTLD_LOCAL)))
{
    const Function<decltype(curl_global_init)> globalInit(m_library, "curl_global_init");
    if (globalInit(CURL_GLOBAL_DEFAULT) != CURLE_OK)
        throw std::bad_alloc();
}

void* CurlLibrary::addressOf(void* library, const char* name)
{
    return found(dlsym(library, name));
}

} // namespace quilvane

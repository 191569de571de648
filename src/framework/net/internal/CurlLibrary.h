// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <curl/curl.h>

namespace quilvane {

/// libcurl, loaded and initialised at the first call of instance(): it needs some thirty other libraries, for
/// which each start of the program would have to wait. Never unloaded, since a transfer may run until the
/// process ends. On any thread.
class CurlLibrary {
    template <typename Signature>
    class Function {
    public:
        Function(void* library, const char* name)
            : m_address(reinterpret_cast<Signature*>(addressOf(library, name)))
        {
        }

        operator Signature*() const { return m_address; }

    private:
        Signature* m_address;
    };

    void* m_library; // declared before the functions that are looked up in it

public:
    /// Throws RuntimeException if the library can't be loaded.
    static const CurlLibrary& instance();

    Function<decltype(curl_easy_cleanup)> easyCleanup{ m_library, "curl_easy_cleanup" };
    Function<decltype(curl_easy_getinfo)> easyGetinfo{ m_library, "curl_easy_getinfo" };
    Function<decltype(curl_easy_init)> easyInit{ m_library, "curl_easy_init" };
    Function<decltype(curl_easy_setopt)> easySetopt{ m_library, "curl_easy_setopt" };
    Function<decltype(curl_easy_strerror)> easyStrerror{ m_library, "curl_easy_strerror" };
    Function<decltype(curl_multi_add_handle)> multiAddHandle{ m_library, "curl_multi_add_handle" };
    Function<decltype(curl_multi_cleanup)> multiCleanup{ m_library, "curl_multi_cleanup" };
    Function<decltype(curl_multi_info_read)> multiInfoRead{ m_library, "curl_multi_info_read" };
    Function<decltype(curl_multi_init)> multiInit{ m_library, "curl_multi_init" };
    Function<decltype(curl_multi_perform)> multiPerform{ m_library, "curl_multi_perform" };
    Function<decltype(curl_multi_poll)> multiPoll{ m_library, "curl_multi_poll" };
    Function<decltype(curl_multi_remove_handle)> multiRemoveHandle{ m_library, "curl_multi_remove_handle" };
    Function<decltype(curl_multi_strerror)> multiStrerror{ m_library, "curl_multi_strerror" };
    Function<decltype(curl_multi_wakeup)> multiWakeup{ m_library, "curl_multi_wakeup" };

private:
    CurlLibrary();

    static void* addressOf(void* library, const char* name);
};

} // namespace quilvane

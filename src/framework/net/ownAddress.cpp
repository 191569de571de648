// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/net/ownAddress.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>

#include <algorithm>
#include <memory>

namespace quilvane {

namespace {

/// The IPv4-mapped form of an address (RFC 4291, 2.5.5.2).
in6_addr mapped(const in_addr& address)
{
    in6_addr result{};
    result.s6_addr[10] = result.s6_addr[11] = 0xFF;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&address);
    std::copy_n(bytes, sizeof address, result.s6_addr + 12);
    return result;
}

bool isLocalByNature(const in6_addr& address)
{
    if (!IN6_IS_ADDR_V4MAPPED(&address))
        return IN6_IS_ADDR_LOOPBACK(&address) || IN6_IS_ADDR_UNSPECIFIED(&address)
            || IN6_IS_ADDR_LINKLOCAL(&address);
    const unsigned char* const bytes = address.s6_addr + 12;
    return bytes[0] == 127 || bytes[0] == 0 || (bytes[0] == 169 && bytes[1] == 254);
}

bool equals(const in6_addr& address, const sockaddr* other)
{
    if (!other)
        return false;
    if (other->sa_family == AF_INET6)
        return IN6_ARE_ADDR_EQUAL(&address, &reinterpret_cast<const sockaddr_in6*>(other)->sin6_addr);
    if (other->sa_family != AF_INET)
        return false;
    const in6_addr same = mapped(reinterpret_cast<const sockaddr_in*>(other)->sin_addr);
    return IN6_ARE_ADDR_EQUAL(&address, &same);
}

bool isOfAnInterface(const in6_addr& address)
{
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0)
        return false;
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> interfaces(first, ::freeifaddrs);
    for (const ifaddrs* each = first; each; each = each->ifa_next)
        if (equals(address, each->ifa_addr))
            return true;
    return false;
}

} // namespace

bool isOwnAddress(const std::string& address)
{
    in_addr version4{};
    in6_addr version6{};
    if (::inet_pton(AF_INET, address.c_str(), &version4) == 1)
        version6 = mapped(version4);
    else if (::inet_pton(AF_INET6, address.c_str(), &version6) != 1)
        return false;
    return isLocalByNature(version6) || isOfAnInterface(version6);
}

} // namespace quilvane

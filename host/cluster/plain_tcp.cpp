#include "host/cluster/plain_tcp.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "host/cluster/address.h"

namespace zorv {
namespace {
constexpr char WARNING[] =
    "plain tcp between nodes is open to anyone who reaches it: tls+tcp:// is for nodes with a certificate";

struct Range {
    const char* begin;
    size_t bits;  // that are the same in all addresses of the range
};

constexpr Range PRIVATE[] = {
    {"::1", 128},  // this machine
    {"::ffff:127.0.0.0", 104},
    {"fe80::", 10},
    {"::ffff:169.254.0.0", 112},  // this link
    {"fc00::", 7},                // and what no router of the Internet forwards
    {"::ffff:10.0.0.0", 104},
    {"::ffff:172.16.0.0", 108},
    {"::ffff:192.168.0.0", 112},
};

in6_addr AddressOf(const sockaddr& socket) {
    in6_addr address = {};
    if (socket.sa_family == AF_INET6) {
        address = reinterpret_cast<const sockaddr_in6&>(socket).sin6_addr;
    } else {  // as IPv6 writes those of IPv4
        const in_addr& old = reinterpret_cast<const sockaddr_in&>(socket).sin_addr;
        address.s6_addr[10] = address.s6_addr[11] = 0xff;
        std::memcpy(&address.s6_addr[12], &old, sizeof old);
    }
    return address;
}

bool IsIn(const Range& range, const in6_addr& address) {
    in6_addr begin = {};
    inet_pton(AF_INET6, range.begin, &begin);
    const size_t whole = range.bits / 8, rest = 8 - range.bits % 8;
    return std::equal(begin.s6_addr, begin.s6_addr + whole, address.s6_addr) &&
           (rest == 8 || begin.s6_addr[whole] >> rest == address.s6_addr[whole] >> rest);
}

bool IsPrivate(const in6_addr& address) {
    return std::any_of(std::begin(PRIVATE), std::end(PRIVATE),
                       [&](const Range& range) { return IsIn(range, address); });
}

// Why it is not sure that the host lies in a private network; empty when it is.
std::string WhyNotPrivate(const std::string& host) {
    addrinfo wanted = {}, *found = nullptr;
    wanted.ai_socktype = SOCK_STREAM;
    if (const int error = getaddrinfo(host.c_str(), nullptr, &wanted, &found); error != 0) {
        return "where '" + host + "' is cannot be told (" + gai_strerror(error) + ")";
    }
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(found, freeaddrinfo);
    for (; found != nullptr; found = found->ai_next) {
        if (!IsPrivate(AddressOf(*found->ai_addr))) {
            return "'" + host + "' is neither on this machine nor in a private network";
        }
    }
    return "";
}
}  // namespace

std::string WarnOfPlainTcp(const NodeAddresses& nodes, bool anywhere) {
    std::string warning;
    for (const auto& [node, address] : nodes) {
        const auto rest = Behind(TCP, address);
        if (!rest.has_value()) {
            continue;
        }
        warning = WARNING;
        const std::string why = anywhere ? "" : WhyNotPrivate(HostOf(*rest));
        if (!why.empty()) {
            throw std::runtime_error("node " + std::to_string(node) + " listens with plain tcp, and " + why +
                                     ": give it a tls+tcp:// address, or say --insecure");
        }
    }
    return warning;
}
}  // namespace zorv

// Where a node listens, as the cluster file says it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zorv {
constexpr std::string_view IPC = "ipc://";
constexpr std::string_view TCP = "tcp://";      // open to anyone who reaches it
constexpr std::string_view TLS = "tls+tcp://";  // for nodes with a certificate of the authority

// What stands behind the scheme, part of `address`; nothing when it has another.
std::optional<std::string_view> Behind(std::string_view scheme, std::string_view address);

// Throws std::runtime_error, with a message for the operator, unless a node can listen at such an address.
void CheckAddress(std::string_view address);

// Of "HOST:PORT" the host, without the brackets of an IPv6 address.
std::string HostOf(std::string_view hostAndPort);
}  // namespace zorv

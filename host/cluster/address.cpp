#include "host/cluster/address.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <stdexcept>

#include "host/cluster/number.h"
#include "text/printable.h"

namespace zorv {
namespace {
constexpr size_t LONGEST_PATH = 107;  // of a socket

bool HasBrackets(std::string_view host) {
    return host.size() > 2 && host.front() == '[' && host.back() == ']';
}

bool IsHost(std::string_view host) {
    if (HasBrackets(host)) {
        host = host.substr(1, host.size() - 2);
        return host.find_first_not_of("0123456789abcdefABCDEF:.") == std::string_view::npos;
    }
    return !host.empty() && std::all_of(host.begin(), host.end(), [](unsigned char letter) {
        return std::isalnum(letter) != 0 || letter == '.' || letter == '-' || letter == '_';
    });
}

void CheckPath(std::string_view path) {
    if (path.substr(0, 1) != "/" || path.size() > LONGEST_PATH) {
        throw std::runtime_error("after ipc:// comes an absolute path of at most " +
                                 std::to_string(LONGEST_PATH) + " bytes");
    }
}

void CheckHostAndPort(std::string_view scheme, std::string_view rest) {
    const size_t colon = std::min(rest.rfind(':'), rest.size());
    uint16_t port = 0;
    if (!IsHost(rest.substr(0, colon)) || !ParseNumber(rest.substr(std::min(colon + 1, rest.size())), port) ||
        port == 0) {
        throw std::runtime_error("after " + std::string(scheme) + " come a host, ':' and a port");
    }
}
}  // namespace

std::optional<std::string_view> Behind(std::string_view scheme, std::string_view address) {
    return address.substr(0, scheme.size()) == scheme ? std::optional(address.substr(scheme.size()))
                                                      : std::nullopt;
}

void CheckAddress(std::string_view address) {
    if (const auto path = Behind(IPC, address)) {
        return CheckPath(*path);
    }
    for (const std::string_view scheme : {TCP, TLS}) {
        if (const auto rest = Behind(scheme, address)) {
            return CheckHostAndPort(scheme, *rest);
        }
    }
    throw std::runtime_error("the address '" + Printable(address, 40) +
                             "' begins with none of ipc://, tcp:// and tls+tcp://");
}

std::string HostOf(std::string_view hostAndPort) {
    const std::string_view host = hostAndPort.substr(0, hostAndPort.rfind(':'));
    return std::string(HasBrackets(host) ? host.substr(1, host.size() - 2) : host);
}
}  // namespace zorv

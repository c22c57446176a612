// What nodes show each other before they talk: certificates of one authority.
#pragma once

#include <memory>
#include <string>

struct nng_tls_config;

namespace zorv {
// Paths of PEM files.
struct CredentialFiles {
    std::string authority;    // certificates; whoever has one that these signed is a node
    std::string certificate;  // the node's own
    std::string key;          // the private key of that
};

// Immutable, so thread-safe.
class Credentials {
public:
    // Throws std::runtime_error, with a message for the operator that names the file, when one cannot be
    // read or is none, others than owner and group may read the key or more than the owner may write it, the
    // three do not belong together, or the certificate is not valid now. Blocks on file I/O.
    explicit Credentials(const CredentialFiles& files);

    // For the side that connects, and for the side that is connected to: each shows the own certificate, and
    // ends a connection whose other side shows none that is valid.
    nng_tls_config* ForAsking() const { return asking.get(); }
    nng_tls_config* ForListening() const { return listening.get(); }

private:
    struct Free {
        void operator()(nng_tls_config* config) const;
    };
    using Config = std::unique_ptr<nng_tls_config, Free>;

    static Config Make(int mode, const std::string& authority, const std::string& certificate,
                       const std::string& key);

    Config asking, listening;
};
}  // namespace zorv

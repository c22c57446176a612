#include "host/cluster/credentials.h"

#include <mbedtls/pk.h>
#include <mbedtls/x509_crt.h>
#include <nng/nng.h>
#include <nng/supplemental/tls/tls.h>
#include <sys/stat.h>

#include <algorithm>
#include <stdexcept>

#include "host/process/files.h"

namespace zorv {
// The library of the byte streams says no more than "cryptographic error". So the files are read here first,
// with the library below it, whose judgement is that of the handshake.

namespace {
constexpr mode_t TOO_OPEN = S_IWGRP | S_IRWXO;

struct Certificates {
    Certificates() { mbedtls_x509_crt_init(&list); }
    ~Certificates() { mbedtls_x509_crt_free(&list); }
    Certificates(const Certificates&) = delete;
    Certificates& operator=(const Certificates&) = delete;

    mbedtls_x509_crt list;
};

struct Key {
    Key() { mbedtls_pk_init(&pair); }
    ~Key() { mbedtls_pk_free(&pair); }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    mbedtls_pk_context pair;
};

[[noreturn]] void Refuse(const char* what, const std::string& file, const std::string& why) {
    throw std::runtime_error(std::string(what) + " '" + file + "' " + why);
}

// Texts in PEM are parsed with the NUL behind them.
const unsigned char* Bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.c_str());
}

void Parse(const char* what, const std::string& file, const std::string& pem, Certificates& certificates) {
    if (mbedtls_x509_crt_parse(&certificates.list, Bytes(pem), pem.size() + 1) != 0) {
        Refuse(what, file, "holds no certificate in PEM, or a damaged one");
    }
}

std::string ReadKey(const std::string& file) {
    struct stat status = {};
    if (stat(file.c_str(), &status) == 0 && (status.st_mode & TOO_OPEN) != 0) {
        Refuse("the key", file, "is open to others: chmod 600 it");
    }
    return ReadInputFile("the key", file);
}

void CheckPair(const CredentialFiles& files, const Certificates& own, const std::string& pem) {
    Key key;
    if (mbedtls_pk_parse_key(&key.pair, Bytes(pem), pem.size() + 1, nullptr, 0) != 0) {
        Refuse("the key", files.key, "holds no private key in PEM, or one with a password");
    }
    if (mbedtls_pk_check_pair(&own.list.pk, &key.pair) != 0) {
        Refuse("the key", files.key, "is not that of the certificate '" + files.certificate + "'");
    }
}

void CheckSignature(const CredentialFiles& files, Certificates& own, Certificates& authority) {
    uint32_t faults = 0;
    if (mbedtls_x509_crt_verify(&own.list, &authority.list, nullptr, nullptr, &faults, nullptr, nullptr) ==
        0) {
        return;
    }
    char text[1024] = "";
    mbedtls_x509_crt_verify_info(text, sizeof text, " ", faults);
    std::string why(text);
    why.erase(std::min(why.find_last_not_of('\n') + 1, why.size()));
    std::replace(why.begin(), why.end(), '\n', ';');
    Refuse("the certificate", files.certificate,
           "is not valid for the authority '" + files.authority + "':" + why);
}
}  // namespace

Credentials::Credentials(const CredentialFiles& files) {
    const std::string authority = ReadInputFile("the authority", files.authority);
    const std::string certificate = ReadInputFile("the certificate", files.certificate);
    const std::string key = ReadKey(files.key);
    Certificates trusted, own;
    Parse("the authority", files.authority, authority, trusted);
    Parse("the certificate", files.certificate, certificate, own);
    CheckPair(files, own, key);
    CheckSignature(files, own, trusted);
    asking = Make(NNG_TLS_MODE_CLIENT, authority, certificate, key);
    listening = Make(NNG_TLS_MODE_SERVER, authority, certificate, key);
}

// No name is compared: who has a certificate of the authority is a node, whatever its address.
Credentials::Config Credentials::Make(int mode, const std::string& authority, const std::string& certificate,
                                      const std::string& key) {
    nng_tls_config* made = nullptr;
    int error = nng_tls_config_alloc(&made, static_cast<nng_tls_mode>(mode));
    Config config(made);
    error = error != 0 ? error : nng_tls_config_version(made, NNG_TLS_1_2, NNG_TLS_1_3);
    error = error != 0 ? error : nng_tls_config_auth_mode(made, NNG_TLS_AUTH_MODE_REQUIRED);
    error = error != 0 ? error : nng_tls_config_ca_chain(made, authority.c_str(), nullptr);
    error = error != 0 ? error : nng_tls_config_own_cert(made, certificate.c_str(), key.c_str(), nullptr);
    if (error != 0) {
        throw std::runtime_error(std::string("the certificates cannot be used: ") + nng_strerror(error));
    }
    return config;
}

void Credentials::Free::operator()(nng_tls_config* config) const {
    nng_tls_config_free(config);
}
}  // namespace zorv

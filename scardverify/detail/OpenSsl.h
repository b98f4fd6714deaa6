#pragma once

#include <QByteArray>

#include <memory>
#include <openssl/bn.h>
#include <openssl/ecdsa.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>

// What OpenSSL gives, freed when it goes.

namespace scard::verify::detail {

template <auto Free>
struct Freed
{
    template <typename T>
    void operator()(T* object) const
    {
        Free(object);
    }
};

using BigNumber = std::unique_ptr<BIGNUM, Freed<&BN_free>>;
using Digest = std::unique_ptr<EVP_MD, Freed<&EVP_MD_free>>;
using EcdsaSignature = std::unique_ptr<ECDSA_SIG, Freed<&ECDSA_SIG_free>>;
using Key = std::unique_ptr<EVP_PKEY, Freed<&EVP_PKEY_free>>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, Freed<&EVP_PKEY_CTX_free>>;
using Parameters = std::unique_ptr<OSSL_PARAM, Freed<&OSSL_PARAM_free>>;
using ParameterBuilder = std::unique_ptr<OSSL_PARAM_BLD, Freed<&OSSL_PARAM_BLD_free>>;

inline const unsigned char* bytesOf(const QByteArray& bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

inline std::size_t sizeOf(const QByteArray& bytes)
{
    return static_cast<std::size_t>(bytes.size());
}

/// The number that big-endian @p bytes are.
BigNumber numberOf(const QByteArray& bytes);

/// A key of what @p builder holds; null when there is no such key.
/// @param type      OpenSSL's name of it
/// @param selection which parts: EVP_PKEY_PUBLIC_KEY
Key keyOf(const char* type, const ParameterBuilder& builder, int selection);

/// Ready to check signatures; null when @p key cannot.
KeyContext verifyingContext(EVP_PKEY* key);

/// The digest of @p data; empty when @p digest is null.
QByteArray digestOf(const Digest& digest, const QByteArray& data);

/// A signature that does not hold leaves errors in the thread's queue, which is the host's and holds but a
/// few: they are taken back at once.
class KeptErrorQueue
{
  public:
    KeptErrorQueue() { ERR_set_mark(); }
    ~KeptErrorQueue() { ERR_pop_to_mark(); }
    KeptErrorQueue(const KeptErrorQueue&) = delete;
    KeptErrorQueue& operator=(const KeptErrorQueue&) = delete;
};

} // namespace scard::verify::detail

#include "AlgorithmPolicy.h"

#include <dlfcn.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>
#include <string>

// The library's calls come here first, and go on to OpenSSL.

namespace {

thread_local test::Refused refusedNow = test::Refused::Nothing;

template <typename Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

EVP_MD* EVP_MD_fetch(OSSL_LIB_CTX* context, const char* algorithm, const char* properties)
{
    static auto* const fetch = next<decltype(EVP_MD_fetch)>("EVP_MD_fetch");
    const std::string name = algorithm;
    if ((refusedNow == test::Refused::Sha1 && name == "SHA1") ||
        (refusedNow == test::Refused::Sha256 && name == "SHA256"))
        return nullptr;
    return fetch(context, algorithm, properties);
}

int EVP_PKEY_CTX_set_signature_md(EVP_PKEY_CTX* context, const EVP_MD* digest)
{
    static auto* const set = next<decltype(EVP_PKEY_CTX_set_signature_md)>("EVP_PKEY_CTX_set_signature_md");
    if (refusedNow == test::Refused::Sha1Signatures && EVP_MD_is_a(digest, "SHA1") == 1)
        return 0;
    return set(context, digest);
}

int EVP_PKEY_encrypt_init(EVP_PKEY_CTX* context)
{
    static auto* const init = next<decltype(EVP_PKEY_encrypt_init)>("EVP_PKEY_encrypt_init");
    return refusedNow == test::Refused::BareRsa ? -1 : init(context);
}

int OSSL_PARAM_BLD_push_utf8_string(
    OSSL_PARAM_BLD* builder, const char* key, const char* text, std::size_t size)
{
    static auto* const push =
        next<decltype(OSSL_PARAM_BLD_push_utf8_string)>("OSSL_PARAM_BLD_push_utf8_string");
    const bool isBrainpool = std::string(text).find("brainpool") == 0;
    // Without the curve its name is one of no group: no key comes of it.
    const char* const known = isBrainpool && refusedNow == test::Refused::Brainpool ? "none" : text;
    return push(builder, key, known, size);
}

} // extern "C"

namespace test {

AlgorithmPolicy::AlgorithmPolicy(Refused refused)
{
    refusedNow = refused;
}

AlgorithmPolicy::~AlgorithmPolicy()
{
    refusedNow = Refused::Nothing;
}

} // namespace test

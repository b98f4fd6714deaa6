#include "OpenSsl.h"

namespace scard::verify::detail {

BigNumber numberOf(const QByteArray& bytes)
{
    return BigNumber(BN_bin2bn(bytesOf(bytes), bytes.size(), nullptr));
}

Key keyOf(const char* type, const ParameterBuilder& builder, int selection)
{
    const Parameters parameters(OSSL_PARAM_BLD_to_param(builder.get()));
    const KeyContext context(EVP_PKEY_CTX_new_from_name(nullptr, type, nullptr));
    EVP_PKEY* key = nullptr;
    if (parameters && context && EVP_PKEY_fromdata_init(context.get()) == 1)
        EVP_PKEY_fromdata(context.get(), &key, selection, parameters.get());
    return Key(key);
}

KeyContext verifyingContext(EVP_PKEY* key)
{
    KeyContext context(EVP_PKEY_CTX_new_from_pkey(nullptr, key, nullptr));
    return context && EVP_PKEY_verify_init(context.get()) == 1 ? std::move(context) : nullptr;
}

QByteArray digestOf(const Digest& digest, const QByteArray& data)
{
    unsigned char bytes[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (!digest || EVP_Digest(data.constData(), sizeOf(data), bytes, &length, digest.get(), nullptr) != 1)
        return {};
    return {reinterpret_cast<const char*>(bytes), static_cast<int>(length)};
}

} // namespace scard::verify::detail

#include "EcKey.h"

#include "Crypto.h"

#include <openssl/bn.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/objects.h>
#include <utility>

namespace sim {

namespace {

using Number = std::shared_ptr<BIGNUM>;
using Context = std::unique_ptr<BN_CTX, decltype(&BN_CTX_free)>;

Number number()
{
    Number result(BN_secure_new(), &BN_clear_free);
    require(result != nullptr, "out of memory");
    return result;
}

Number numberFrom(const Bytes& bytes)
{
    Number result = number();
    require(
        BN_bin2bn(bytes.data(), static_cast<int>(bytes.size()), result.get()) != nullptr, "out of memory");
    return result;
}

Bytes bytesOf(const BIGNUM* value, std::size_t length)
{
    Bytes bytes(length);
    require(BN_bn2binpad(value, bytes.data(), static_cast<int>(length)) >= 0, "a number too long");
    return bytes;
}

Context newContext()
{
    Context context(BN_CTX_new(), &BN_CTX_free);
    require(context != nullptr, "out of memory");
    return context;
}

std::shared_ptr<const EC_GROUP> newGroup(Curve curve)
{
    std::shared_ptr<const EC_GROUP> group(
        EC_GROUP_new_by_curve_name(OBJ_txt2nid(describe(curve).groupName)), &EC_GROUP_free);
    require(group != nullptr, "a curve is missing");
    return group;
}

const BIGNUM* orderOf(const EC_GROUP* group)
{
    return EC_GROUP_get0_order(group);
}

Bytes digestOf(const char* digestName, const Bytes& data)
{
    Bytes digest(EVP_MAX_MD_SIZE);
    unsigned int length = 0;
    require(
        EVP_Digest(
            data.data(), data.size(), digest.data(), &length, EVP_get_digestbyname(digestName), nullptr) == 1,
        "SHA-2 failed");
    digest.resize(length);
    return digest;
}

const EVP_MD* sha2OfLength(std::size_t length)
{
    switch (length) {
    case 32:
        return EVP_sha256();
    case 48:
        return EVP_sha384();
    case 64:
        return EVP_sha512();
    default:
        throw std::invalid_argument("not a SHA-2 digest");
    }
}

/// The leftmost bits of a byte string, as many as the order has.
Number leftmostBits(const Bytes& bytes, const BIGNUM* order)
{
    Number value = numberFrom(bytes);
    const int excess = static_cast<int>(8 * bytes.size()) - BN_num_bits(order);
    if (excess > 0) {
        require(BN_rshift(value.get(), value.get(), excess) == 1, "shift failed");
    }
    return value;
}

/// The numbers k that RFC 6979 (section 3.2) derives from key and digest, one after the other.
class DerivedNumbers
{
  public:
    DerivedNumbers(const BIGNUM* secret, const Bytes& digest, const BIGNUM* order, BN_CTX* context)
        : m_order(order), m_md(sha2OfLength(digest.size())), m_key(digest.size(), 0x00),
          m_value(digest.size(), 0x01)
    {
        const auto length = static_cast<std::size_t>(BN_num_bytes(order));
        const Number reduced = leftmostBits(digest, order);
        require(BN_nnmod(reduced.get(), reduced.get(), order, context) == 1, "reduction failed");
        Bytes seed = bytesOf(secret, length);
        appendBytes(seed, bytesOf(reduced.get(), length));
        mix(0x00, seed);
        mix(0x01, seed);
    }

    Number next()
    {
        while (true) {
            Bytes bytes;
            while (bytes.size() < static_cast<std::size_t>(BN_num_bytes(m_order))) {
                m_value = hmac(m_value);
                appendBytes(bytes, m_value);
            }
            Number candidate = leftmostBits(bytes, m_order);
            mix(0x00, {});
            if (!BN_is_zero(candidate.get()) && BN_cmp(candidate.get(), m_order) < 0) {
                return candidate;
            }
        }
    }

  private:
    Bytes hmac(const Bytes& data) const
    {
        Bytes result(m_key.size());
        require(
            HMAC(
                m_md, m_key.data(), static_cast<int>(m_key.size()), data.data(), data.size(), result.data(),
                nullptr) != nullptr,
            "HMAC failed");
        return result;
    }

    void mix(std::uint8_t step, const Bytes& seed)
    {
        Bytes data = m_value;
        data.push_back(step);
        appendBytes(data, seed);
        m_key = hmac(data);
        m_value = hmac(m_value);
    }

    const BIGNUM* m_order;
    const EVP_MD* m_md;
    Bytes m_key;
    Bytes m_value;
};

/// factor times the base point.
std::unique_ptr<EC_POINT, decltype(&EC_POINT_free)>
basePointTimes(const BIGNUM* factor, const EC_GROUP* group, BN_CTX* context)
{
    std::unique_ptr<EC_POINT, decltype(&EC_POINT_free)> point(EC_POINT_new(group), &EC_POINT_free);
    require(
        point && EC_POINT_mul(group, point.get(), factor, nullptr, nullptr, context) == 1,
        "point multiplication failed");
    return point;
}

} // namespace

EcKey::EcKey(Curve curve, const Bytes& secret) : m_curve(curve), m_group(newGroup(curve))
{
    const Number value = numberFrom(secret);
    if (BN_is_zero(value.get()) || BN_cmp(value.get(), orderOf(m_group.get())) >= 0) {
        throw std::invalid_argument("not a private key of this curve");
    }
    m_secret = value;
    const Context context = newContext();
    const auto point = basePointTimes(m_secret.get(), m_group.get(), context.get());
    m_publicPoint.resize(describe(curve).pointLength());
    require(
        EC_POINT_point2oct(
            m_group.get(), point.get(), POINT_CONVERSION_UNCOMPRESSED, m_publicPoint.data(),
            m_publicPoint.size(), context.get()) == m_publicPoint.size(),
        "a point of another length");
}

EcKey EcKey::fromLabel(Curve curve, const std::string& label)
{
    const std::string text = std::string(describe(curve).name) + ' ' + label;
    Bytes seed;
    for (const std::uint32_t part : {0U, 1U}) {
        Bytes data(text.begin(), text.end());
        appendU8(data, part);
        appendBytes(seed, digestOf("SHA512", data));
    }
    // 1..order-1
    const auto group = newGroup(curve);
    const Context context = newContext();
    const Number limit = number();
    const Number secret = numberFrom(seed);
    require(
        BN_sub(limit.get(), orderOf(group.get()), BN_value_one()) == 1 &&
            BN_nnmod(secret.get(), secret.get(), limit.get(), context.get()) == 1 &&
            BN_add_word(secret.get(), 1) == 1,
        "no key for this label");
    return EcKey(curve, bytesOf(secret.get(), describe(curve).fieldLength));
}

Bytes EcKey::signDigest(const Bytes& digest) const
{
    const BIGNUM* order = orderOf(m_group.get());
    const Context context = newContext();
    BN_CTX* const c = context.get();
    const Number hashed = leftmostBits(digest, order);
    const Number x = number();
    const Number r = number();
    const Number s = number();
    const Number inverse = number();
    DerivedNumbers numbers(m_secret.get(), digest, order, c);
    do {
        const Number k = numbers.next();
        const auto point = basePointTimes(k.get(), m_group.get(), c);
        // s = (digest + r * secret) / k
        require(
            EC_POINT_get_affine_coordinates(m_group.get(), point.get(), x.get(), nullptr, c) == 1 &&
                BN_nnmod(r.get(), x.get(), order, c) == 1 &&
                BN_mod_mul(s.get(), r.get(), m_secret.get(), order, c) == 1 &&
                BN_mod_add(s.get(), s.get(), hashed.get(), order, c) == 1 &&
                BN_mod_inverse(inverse.get(), k.get(), order, c) != nullptr &&
                BN_mod_mul(s.get(), s.get(), inverse.get(), order, c) == 1,
            "ECDSA failed");
    } while (BN_is_zero(r.get()) == 1 || BN_is_zero(s.get()) == 1);

    const std::size_t length = describe(m_curve).fieldLength;
    Bytes signature = bytesOf(r.get(), length);
    appendBytes(signature, bytesOf(s.get(), length));
    return signature;
}

Bytes EcKey::sign(const Bytes& data) const
{
    return signDigest(sha2(m_curve, data));
}

EcSigner::EcSigner(EcKey key) : m_key(std::move(key)) {}

Bytes EcSigner::hash(const Bytes& fileContent) const
{
    return sha2(m_key.curve(), fileContent);
}

Bytes EcSigner::signHash(const Bytes& hash) const
{
    return m_key.signDigest(hash);
}

std::size_t EcSigner::signatureLength() const
{
    return describe(m_key.curve()).signatureLength();
}

Bytes sha2(Curve curve, const Bytes& data)
{
    return digestOf(describe(curve).digestName, data);
}

} // namespace sim

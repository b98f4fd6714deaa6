#include "VerifyG1.h"

#include <algorithm>
#include <array>
#include <memory>
#include <openssl/bn.h>
#include <openssl/evp.h>

namespace sim {

namespace {

constexpr std::size_t BlockLength = 128;
constexpr std::size_t DigestLength = 20;
constexpr std::size_t RootKeyLength = 144;
constexpr std::size_t CertificateLength = 194;
constexpr std::size_t RestLength = 58;
constexpr std::size_t ContentInBlock = BlockLength - 1 - DigestLength - 1;

constexpr std::uint8_t RecoveryHeader = 0x6A;
constexpr std::uint8_t RecoveryTrailer = 0xBC;

/// SEQUENCE { SEQUENCE { sha-1, NULL }, OCTET STRING of 20 bytes } before the digest.
constexpr std::array<std::uint8_t, 15> Sha1Info = {0x30, 0x21, 0x30, 0x09, 0x06, 0x05, 0x2B, 0x0E,
                                                   0x03, 0x02, 0x1A, 0x05, 0x00, 0x04, 0x14};

using BigNumber = std::unique_ptr<BIGNUM, decltype(&BN_free)>;

BigNumber number(const Bytes& bytes)
{
    return BigNumber(BN_bin2bn(bytes.data(), static_cast<int>(bytes.size()), nullptr), &BN_free);
}

/// The public operation: signature ^ e mod n in 128 bytes; nullopt for numbers no key has.
std::optional<Bytes> open(const PublicKeyG1& key, const Bytes& signature)
{
    if (signature.size() != BlockLength || key.modulus.size() != BlockLength) {
        return std::nullopt;
    }
    const BigNumber base = number(signature);
    const BigNumber exponent = number(key.exponent);
    const BigNumber modulus = number(key.modulus);
    const BigNumber result(BN_new(), &BN_free);
    const std::unique_ptr<BN_CTX, decltype(&BN_CTX_free)> context(BN_CTX_new(), &BN_CTX_free);
    if (!base || !exponent || !modulus || !result || !context || BN_cmp(base.get(), modulus.get()) >= 0 ||
        BN_mod_exp(result.get(), base.get(), exponent.get(), modulus.get(), context.get()) != 1) {
        return std::nullopt;
    }
    Bytes block(BlockLength);
    if (BN_bn2binpad(result.get(), block.data(), static_cast<int>(block.size())) < 0) {
        return std::nullopt;
    }
    return block;
}

std::optional<Bytes> digestOf(const Bytes& data)
{
    Bytes digest(DigestLength);
    unsigned int length = 0;
    if (EVP_Digest(data.data(), data.size(), digest.data(), &length, EVP_sha1(), nullptr) != 1 ||
        length != DigestLength) {
        return std::nullopt;
    }
    return digest;
}

/// Takes fields off the front of a byte string.
class Cursor
{
  public:
    explicit Cursor(const Bytes& bytes) : m_bytes(bytes) {}

    Bytes next(std::size_t length)
    {
        m_offset += length;
        return slice(m_bytes, m_offset - length, length);
    }

  private:
    const Bytes& m_bytes;
    std::size_t m_offset = 0;
};

} // namespace

std::optional<PublicKeyG1> publicKeyFromRootG1(const Bytes& rootKey)
{
    if (rootKey.size() != RootKeyLength) {
        return std::nullopt;
    }
    return PublicKeyG1{slice(rootKey, 8, 128), slice(rootKey, 136, 8)};
}

std::optional<CertificateContentG1> verifyCertificateG1(const Bytes& certificate, const PublicKeyG1& issuer)
{
    if (certificate.size() != CertificateLength) {
        return std::nullopt;
    }
    const auto block = open(issuer, slice(certificate, 0, BlockLength));
    if (!block || block->front() != RecoveryHeader || block->back() != RecoveryTrailer) {
        return std::nullopt;
    }

    Bytes content = slice(*block, 1, ContentInBlock);
    const Bytes rest = slice(certificate, BlockLength, RestLength);
    content.insert(content.end(), rest.begin(), rest.end());
    if (digestOf(content) != slice(*block, 1 + ContentInBlock, DigestLength)) {
        return std::nullopt;
    }

    Cursor cursor(content);
    CertificateContentG1 result;
    result.profile = cursor.next(1).front();
    result.authority = cursor.next(8);
    result.authorisation = cursor.next(7);
    result.endOfValidity = readU32(cursor.next(4), 0);
    result.holder = cursor.next(8);
    result.key.modulus = cursor.next(128);
    result.key.exponent = cursor.next(8);
    if (result.authority != slice(certificate, BlockLength + RestLength, 8)) {
        return std::nullopt;
    }
    return result;
}

bool verifySignatureG1(const PublicKeyG1& key, const Bytes& data, const Bytes& signature)
{
    const auto block = open(key, signature);
    const auto digest = digestOf(data);
    if (!block || !digest) {
        return false;
    }
    Bytes expected(BlockLength, 0xFF);
    expected[0] = 0x00;
    expected[1] = 0x01;
    const auto digestAt = expected.end() - static_cast<Bytes::difference_type>(DigestLength);
    const auto infoAt = digestAt - static_cast<Bytes::difference_type>(Sha1Info.size());
    *(infoAt - 1) = 0x00;
    std::copy(Sha1Info.begin(), Sha1Info.end(), infoAt);
    std::copy(digest->begin(), digest->end(), digestAt);
    return *block == expected;
}

} // namespace sim

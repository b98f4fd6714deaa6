#include "VerifyImage.h"

#include <simulator/TestPki.h>
#include <simulator/TestPkiG2.h>
#include <simulator/VerifyG1.h>
#include <simulator/VerifyG2.h>

#include <gtest/gtest.h>

#include <map>

namespace test {

namespace {

constexpr std::size_t headerLength = 5;

/// Payloads by type and FID.
using Records = std::map<unsigned, std::map<unsigned, sim::Bytes>>;

Records recordsOf(const sim::Bytes& image)
{
    Records records;
    for (std::size_t position = 0; position < image.size();) {
        const unsigned fid = sim::readU16(image, position);
        const unsigned length = sim::readU16(image, position + 3);
        records[image.at(position + 2)][fid] = sim::slice(image, position + headerLength, length);
        position += headerLength + length;
    }
    return records;
}

std::size_t verifiedG1(Records& records)
{
    const auto root = sim::publicKeyFromRootG1(sim::rootKeyG1());
    const auto state = root ? sim::verifyCertificateG1(records[0][0xC108], *root) : std::nullopt;
    const auto card = state ? sim::verifyCertificateG1(records[0][0xC100], state->key) : std::nullopt;
    EXPECT_TRUE(card);
    std::size_t verified = 0;
    for (const auto& [fid, signature] : records[1]) {
        EXPECT_EQ(signature.size(), 128u) << std::hex << fid;
        const bool holds = card && sim::verifySignatureG1(card->key, records[0][fid], signature);
        EXPECT_TRUE(holds) << std::hex << fid;
        verified += holds;
    }
    return verified;
}

std::size_t verifiedG2(Records& records)
{
    const auto root = sim::publicKeyFromRootCertificateG2(sim::rootCertificateG2(sim::Curve::NistP256));
    const auto state = root ? sim::verifyCertificateG2(records[2][0xC108], *root) : std::nullopt;
    const auto sign = state ? sim::verifyCertificateG2(records[2][0xC101], state->key) : std::nullopt;
    EXPECT_TRUE(sign);
    EXPECT_TRUE(state && sim::verifyCertificateG2(records[2][0xC100], state->key));
    std::size_t verified = 0;
    for (const auto& [fid, signature] : records[3]) {
        EXPECT_EQ(signature.size(), 64u) << std::hex << fid;
        const bool holds = sign && sim::verifySignatureG2(sign->key, records[2][fid], signature);
        EXPECT_TRUE(holds) << std::hex << fid;
        verified += holds;
    }
    return verified;
}

} // namespace

QList<QByteArray> recordHeadersOf(const QByteArray& image)
{
    QList<QByteArray> headers;
    for (int position = 0; position + static_cast<int>(headerLength) <= image.size();) {
        headers.append(image.mid(position, 3));
        const int length = static_cast<unsigned char>(image.at(position + 3)) << 8 |
                           static_cast<unsigned char>(image.at(position + 4));
        position += static_cast<int>(headerLength) + length;
    }
    return headers;
}

std::size_t verifiedSignatures(const sim::Bytes& image)
{
    Records records = recordsOf(image);
    return verifiedG1(records) + (records.count(3) ? verifiedG2(records) : 0);
}

} // namespace test

#include "VerifyImage.h"

#include <simulator/TestPki.h>
#include <simulator/TestPkiG2.h>
#include <simulator/VerifyG1.h>
#include <simulator/VerifyG2.h>
#include <support/FileRecords.h>

#include <gtest/gtest.h>

#include <map>

namespace test {

namespace {

/// Payloads by type and FID.
using Payloads = std::map<unsigned, std::map<unsigned, sim::Bytes>>;

Payloads payloadsOf(const sim::Bytes& image)
{
    Payloads payloads;
    std::size_t end = 0;
    for (const auto& record : recordsOf(image)) {
        payloads[record.type][record.fid] = sim::slice(image, record.begin(), record.length);
        end = record.end();
    }
    EXPECT_EQ(end, image.size());
    return payloads;
}

std::size_t verifiedG1(Payloads& payloads)
{
    const auto root = sim::publicKeyFromRootG1(sim::rootKeyG1());
    const auto state = root ? sim::verifyCertificateG1(payloads[0][0xC108], *root) : std::nullopt;
    const auto card = state ? sim::verifyCertificateG1(payloads[0][0xC100], state->key) : std::nullopt;
    EXPECT_TRUE(card);
    std::size_t verified = 0;
    for (const auto& [fid, signature] : payloads[1]) {
        EXPECT_EQ(signature.size(), 128u) << std::hex << fid;
        const bool holds = card && sim::verifySignatureG1(card->key, payloads[0][fid], signature);
        EXPECT_TRUE(holds) << std::hex << fid;
        verified += holds;
    }
    return verified;
}

std::size_t verifiedG2(Payloads& payloads)
{
    const auto root = sim::publicKeyFromRootCertificateG2(sim::rootCertificateG2(sim::Curve::NistP256));
    const auto state = root ? sim::verifyCertificateG2(payloads[2][0xC108], *root) : std::nullopt;
    const auto sign = state ? sim::verifyCertificateG2(payloads[2][0xC101], state->key) : std::nullopt;
    EXPECT_TRUE(sign);
    EXPECT_TRUE(state && sim::verifyCertificateG2(payloads[2][0xC100], state->key));
    std::size_t verified = 0;
    for (const auto& [fid, signature] : payloads[3]) {
        EXPECT_EQ(signature.size(), 64u) << std::hex << fid;
        const bool holds = sign && sim::verifySignatureG2(sign->key, payloads[2][fid], signature);
        EXPECT_TRUE(holds) << std::hex << fid;
        verified += holds;
    }
    return verified;
}

} // namespace

QList<QByteArray> recordHeadersOf(const QByteArray& image)
{
    QList<QByteArray> headers;
    for (const FileRecord& record : recordsOf(image))
        headers.append(image.mid(record.offset, 3));
    return headers;
}

std::size_t verifiedSignatures(const sim::Bytes& image)
{
    Payloads payloads = payloadsOf(image);
    return verifiedG1(payloads) + (payloads.count(3) ? verifiedG2(payloads) : 0);
}

} // namespace test

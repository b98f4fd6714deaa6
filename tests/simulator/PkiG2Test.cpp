// The second-generation keys of the simulator, proven with the verifier that knows only public keys.

#include "RowName.h"
#include "TestPkiG2.h"
#include "TimeReal.h"
#include "VerifyG2.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using sim::Bytes;
using sim::Curve;
using sim::fromHex;
using sim::PublicKeyG2;
using sim::toHex;

const Bytes SerialNumber = fromHex("12 34 56 78 03 24 01 54");
const std::uint32_t Issued = sim::timeOf({2021, 9, 14});
const std::uint32_t Expires = sim::timeOf({2026, 9, 14}) - 1;

sim::CardHolder holder(std::uint8_t nation = 0x0D)
{
    return {nation, SerialNumber, Issued, Expires};
}

PublicKeyG2 root(Curve curve)
{
    return sim::publicKeyFromRootCertificateG2(sim::rootCertificateG2(curve)).value();
}

PublicKeyG2 memberState(Curve curve)
{
    return sim::verifyCertificateG2(sim::caCertificateG2(curve, 0x0D, 2021), root(curve)).value().key;
}

class CertificatesG2 : public testing::TestWithParam<sim::CurveDescription>
{
  protected:
    Curve m_curve = GetParam().curve;
};

TEST_P(CertificatesG2, verifyUpTheChain)
{
    const Bytes rootFile = sim::rootCertificateG2(m_curve);
    const auto anchor = sim::publicKeyFromRootCertificateG2(rootFile);
    ASSERT_TRUE(anchor);
    EXPECT_EQ(anchor->curve, m_curve);
    const auto rootContent = sim::verifyCertificateG2(rootFile, *anchor);
    ASSERT_TRUE(rootContent);
    EXPECT_EQ(toHex(rootContent->authorisation), "FF 53 4D 52 44 54 0D");
    EXPECT_EQ(toHex(sim::slice(rootContent->holder, 0, 4)), "FD 45 43 20");
    EXPECT_EQ(toHex(sim::slice(rootContent->holder, 5, 3)), "54 4B 01") << "the mark of a test key";
    EXPECT_EQ(rootContent->authority, rootContent->holder);
    EXPECT_EQ(rootContent->effective, sim::timeOf({2015, 6, 1}));
    EXPECT_EQ(rootContent->expires, sim::timeOf({2049, 9, 1}) - 1) << "34 years and 3 months";

    const auto authority = sim::verifyCertificateG2(sim::caCertificateG2(m_curve, 0x12, 2021), *anchor);
    ASSERT_TRUE(authority);
    EXPECT_EQ(authority->profile, 0);
    EXPECT_EQ(authority->authority, rootContent->holder);
    EXPECT_EQ(toHex(authority->authorisation), "FF 53 4D 52 44 54 0E");
    EXPECT_EQ(toHex(sim::slice(authority->holder, 0, 4)), "12 46 49 4E");
    EXPECT_EQ(toHex(sim::slice(authority->holder, 5, 3)), "54 4B 01");
    EXPECT_EQ(authority->effective, sim::timeOf({2021, 1, 1}));
    EXPECT_EQ(authority->expires, sim::timeOf({2028, 2, 1}) - 1) << "7 years and 1 month";

    const auto ma = sim::verifyCertificateG2(sim::cardMaCertificateG2(m_curve, holder(0x12)), authority->key);
    ASSERT_TRUE(ma);
    EXPECT_EQ(ma->authority, authority->holder);
    EXPECT_EQ(toHex(ma->authorisation), "FF 53 4D 52 44 54 01");
    EXPECT_EQ(ma->holder, SerialNumber);
    EXPECT_EQ(ma->effective, Issued);
    EXPECT_EQ(ma->expires, Expires);

    const auto sign =
        sim::verifyCertificateG2(sim::cardSignCertificateG2(m_curve, holder(0x12)), authority->key);
    ASSERT_TRUE(sign);
    EXPECT_EQ(sign->authority, authority->holder);
    EXPECT_EQ(toHex(sign->authorisation), "FF 53 4D 52 44 54 11");
    EXPECT_EQ(sign->holder, SerialNumber);
    EXPECT_EQ(sign->effective, Issued);
    EXPECT_EQ(sign->expires, sim::timeOf({2026, 10, 14}) - 1) << "a month longer";
    EXPECT_NE(sign->key.point, ma->key.point);

    const Bytes data = fromHex("01 02 03");
    EXPECT_TRUE(sim::verifySignatureG2(sign->key, data, sim::cardSignerG2(m_curve)->sign(data)));
    EXPECT_FALSE(sim::verifySignatureG2(ma->key, data, sim::cardSignerG2(m_curve)->sign(data)));
}

TEST_P(CertificatesG2, leadFromThePreviousRootToTheRoot)
{
    const Bytes previousFile = sim::previousRootCertificateG2(m_curve);
    const auto previous = sim::publicKeyFromRootCertificateG2(previousFile);
    ASSERT_TRUE(previous);
    const auto link = sim::verifyCertificateG2(sim::linkCertificateG2(m_curve), *previous);
    ASSERT_TRUE(link);
    const auto rootContent = sim::verifyCertificateG2(sim::rootCertificateG2(m_curve), root(m_curve));
    ASSERT_TRUE(rootContent);
    EXPECT_EQ(link->key.point, rootContent->key.point);
    EXPECT_EQ(link->holder, rootContent->holder);
    EXPECT_EQ(link->authority, sim::verifyCertificateG2(previousFile, *previous)->holder);
    EXPECT_NE(link->authority, link->holder);
    EXPECT_EQ(toHex(link->authorisation), "FF 53 4D 52 44 54 0D");
    EXPECT_EQ(link->expires, sim::timeOf({2032, 9, 1}) - 1) << "17 years and 3 months";
    EXPECT_FALSE(sim::publicKeyFromRootCertificateG2(sim::linkCertificateG2(m_curve)))
        << "the holder did not sign it";
}

TEST_P(CertificatesG2, doNotVerifyWithAnotherKey)
{
    const Bytes certificate = sim::cardSignCertificateG2(m_curve, holder());
    EXPECT_TRUE(sim::verifyCertificateG2(certificate, memberState(m_curve)));
    EXPECT_FALSE(sim::verifyCertificateG2(certificate, root(m_curve)));
    EXPECT_FALSE(sim::verifyCertificateG2(sim::linkCertificateG2(m_curve), root(m_curve)));
    for (const sim::CurveDescription& row : sim::curves()) {
        EXPECT_EQ(
            sim::verifyCertificateG2(certificate, memberState(row.curve)).has_value(), row.curve == m_curve)
            << row.name;
    }
}

TEST_P(CertificatesG2, doNotVerifyWhenAnyByteIsChanged)
{
    const Bytes certificate = sim::rootCertificateG2(m_curve);
    const PublicKeyG2 key = root(m_curve);
    for (std::size_t i = 0; i < certificate.size(); ++i) {
        Bytes tampered = certificate;
        tampered[i] ^= 0x01;
        EXPECT_FALSE(sim::verifyCertificateG2(tampered, key)) << "byte " << i;
        EXPECT_FALSE(sim::publicKeyFromRootCertificateG2(tampered)) << "byte " << i;
    }
}

TEST_P(CertificatesG2, doNotVerifyWhenTheyAreCutOrPadded)
{
    const Bytes certificate = sim::cardMaCertificateG2(m_curve, holder());
    const PublicKeyG2 key = memberState(m_curve);
    ASSERT_TRUE(sim::verifyCertificateG2(certificate, key));
    for (std::size_t length = 0; length < certificate.size(); ++length) {
        EXPECT_FALSE(sim::verifyCertificateG2(sim::slice(certificate, 0, length), key)) << length;
    }
    Bytes padded = certificate;
    padded.push_back(0x00);
    EXPECT_FALSE(sim::verifyCertificateG2(padded, key));
}

TEST_P(CertificatesG2, areTheSameEachTime)
{
    EXPECT_EQ(sim::cardSignCertificateG2(m_curve, holder()), sim::cardSignCertificateG2(m_curve, holder()));
    EXPECT_EQ(sim::cardSignerG2(m_curve), sim::cardSignerG2(m_curve));
    EXPECT_EQ(sim::cardSignerG2(m_curve)->signatureLength(), GetParam().signatureLength());
}

TEST_P(CertificatesG2, nameTheKindOfCard)
{
    const auto authorisation = [&](const Bytes& certificate) {
        return toHex(sim::verifyCertificateG2(certificate, memberState(m_curve)).value().authorisation);
    };
    const std::pair<sim::Equipment, const char*> kinds[] = {
        {sim::Equipment::Workshop, "FF 53 4D 52 44 54 02"},
        {sim::Equipment::Control, "FF 53 4D 52 44 54 03"},
        {sim::Equipment::Company, "FF 53 4D 52 44 54 04"}};
    for (const auto& [equipment, expected] : kinds) {
        sim::CardHolder card = holder();
        card.equipment = equipment;
        EXPECT_EQ(authorisation(sim::cardMaCertificateG2(m_curve, card)), expected);
        if (equipment == sim::Equipment::Workshop) {
            EXPECT_EQ(authorisation(sim::cardSignCertificateG2(m_curve, card)), "FF 53 4D 52 44 54 12");
        } else {
            EXPECT_THROW(sim::cardSignCertificateG2(m_curve, card), std::invalid_argument);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, CertificatesG2, testing::ValuesIn(sim::curves()), curveName);

TEST(CertificateSizes, followFromTheCurve)
{
    const std::pair<Curve, std::size_t> sizes[] = {
        {Curve::NistP256, 204},        {Curve::BrainpoolP256r1, 205}, {Curve::NistP384, 266},
        {Curve::BrainpoolP384r1, 270}, {Curve::BrainpoolP512r1, 337}, {Curve::NistP521, 341},
    };
    for (const auto& [curve, size] : sizes) {
        EXPECT_EQ(sim::rootCertificateG2(curve).size(), size);
        EXPECT_EQ(sim::linkCertificateG2(curve).size(), size);
        EXPECT_EQ(sim::caCertificateG2(curve, 0x0D, 2021).size(), size);
        EXPECT_EQ(sim::cardMaCertificateG2(curve, holder()).size(), size);
        EXPECT_EQ(sim::cardSignCertificateG2(curve, holder()).size(), size);
    }
}

TEST(CertificateLayout, isThatOfTheRegulation)
{
    const Bytes certificate = sim::cardSignCertificateG2(Curve::NistP256, holder());
    const auto at = [&](std::size_t offset, std::size_t length) {
        return toHex(sim::slice(certificate, offset, length));
    };
    EXPECT_EQ(at(0, 4), "7F 21 81 C8");
    EXPECT_EQ(at(4, 4), "7F 4E 81 81");
    EXPECT_EQ(at(8, 4), "5F 29 01 00");
    EXPECT_EQ(at(12, 2), "42 08");
    EXPECT_EQ(at(14, 4), "0D 44 20 20");
    EXPECT_EQ(at(22, 10), "5F 4C 07 FF 53 4D 52 44 54 11");
    EXPECT_EQ(at(32, 3), "7F 49 4D");
    EXPECT_EQ(at(35, 10), "06 08 2A 86 48 CE 3D 03 01 07");
    EXPECT_EQ(at(45, 3), "86 41 04");
    EXPECT_EQ(at(112, 11), "5F 20 08 12 34 56 78 03 24 01 54");
    EXPECT_EQ(at(123, 3), "5F 25 04");
    EXPECT_EQ(at(130, 3), "5F 24 04");
    EXPECT_EQ(at(137, 3), "5F 37 40");
    const Bytes signedPart = sim::slice(certificate, 4, 133);
    EXPECT_TRUE(
        sim::verifySignatureG2(memberState(Curve::NistP256), signedPart, sim::slice(certificate, 140, 64)));
}

TEST(CertificateLayout, hasLongLengthsForTheLargestCurve)
{
    const Bytes certificate = sim::caCertificateG2(Curve::NistP521, 0x0D, 2021);
    EXPECT_EQ(toHex(sim::slice(certificate, 0, 9)), "7F 21 82 01 50 7F 4E 81 C4");
    EXPECT_EQ(toHex(sim::slice(certificate, 205, 4)), "5F 37 81 84");
}

TEST(CertificateLayout, isRefusedWithALengthThatIsNotTheShortest)
{
    // The signature covers neither the outermost length nor its own.
    const PublicKeyG2 key = root(Curve::NistP256);
    const Bytes certificate = sim::rootCertificateG2(Curve::NistP256);
    const Bytes signedPart = sim::slice(certificate, 4, 133);
    const Bytes signature = sim::slice(certificate, 140, 64);
    const auto assemble = [&](const char* outside, const char* beforeSignature) {
        Bytes bytes = fromHex(outside);
        sim::appendBytes(bytes, signedPart);
        sim::appendBytes(bytes, fromHex(beforeSignature));
        sim::appendBytes(bytes, signature);
        return sim::verifyCertificateG2(bytes, key).has_value();
    };
    EXPECT_TRUE(assemble("7F 21 81 C8", "5F 37 40"));
    EXPECT_FALSE(assemble("7F 21 82 00 C8", "5F 37 40"));
    EXPECT_FALSE(assemble("7F 21 83 00 00 C8", "5F 37 40"));
    EXPECT_FALSE(assemble("7F 21 80 C8", "5F 37 40"));
    EXPECT_FALSE(assemble("7F 21 81 C9", "5F 37 81 40"));
    EXPECT_FALSE(assemble("7F 21 81 CA", "5F 37 82 00 40"));
}

TEST(KeyIdentifiers, differForEachKeyOfTheHierarchy)
{
    std::vector<Bytes> ids;
    for (const sim::CurveDescription& row : sim::curves()) {
        const PublicKeyG2 anchor = root(row.curve);
        const Bytes link = sim::linkCertificateG2(row.curve);
        const auto previous = sim::publicKeyFromRootCertificateG2(sim::previousRootCertificateG2(row.curve));
        ASSERT_TRUE(previous);
        ids.push_back(sim::verifyCertificateG2(link, *previous)->authority);
        ids.push_back(sim::verifyCertificateG2(link, *previous)->holder);
        for (const std::uint8_t nation : {std::uint8_t{0x0D}, std::uint8_t{0x12}}) {
            const auto authority =
                sim::verifyCertificateG2(sim::caCertificateG2(row.curve, nation, 2021), anchor);
            ASSERT_TRUE(authority);
            ids.push_back(authority->holder);
        }
    }
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(std::unique(ids.begin(), ids.end()), ids.end());
}

TEST(CertificatesOfTheSecondGeneration, areRefusedWithFieldsOfAnotherLength)
{
    const sim::EcKey key = sim::EcKey::fromLabel(Curve::NistP256, "a label");
    sim::CertificateFieldsG2 fields;
    fields.authority = SerialNumber;
    fields.holder = SerialNumber;
    fields.publicPoint = key.publicPoint();
    EXPECT_EQ(sim::makeCertificateG2(key, fields).size(), 204u);
    fields.holder.pop_back();
    EXPECT_THROW(sim::makeCertificateG2(key, fields), std::invalid_argument);
    fields.holder = SerialNumber;
    fields.authority.push_back(0x00);
    EXPECT_THROW(sim::makeCertificateG2(key, fields), std::invalid_argument);
    fields.authority = SerialNumber;
    fields.curve = Curve::NistP384;
    EXPECT_THROW(sim::makeCertificateG2(key, fields), std::invalid_argument);
}

TEST(RootCertificates, areOnlyThoseOfARoot)
{
    // Self-signed, but by somebody who is no root.
    const sim::EcKey key = sim::EcKey::fromLabel(Curve::NistP256, "a label");
    sim::CertificateFieldsG2 fields;
    fields.authority = SerialNumber;
    fields.holder = SerialNumber;
    fields.publicPoint = key.publicPoint();
    fields.equipment = sim::EquipmentG2::MemberState;
    EXPECT_FALSE(sim::publicKeyFromRootCertificateG2(sim::makeCertificateG2(key, fields)));
    fields.equipment = sim::EquipmentG2::Root;
    EXPECT_TRUE(sim::publicKeyFromRootCertificateG2(sim::makeCertificateG2(key, fields)));
    fields.authority.back() ^= 0x01;
    EXPECT_FALSE(sim::publicKeyFromRootCertificateG2(sim::makeCertificateG2(key, fields)));
}

} // namespace

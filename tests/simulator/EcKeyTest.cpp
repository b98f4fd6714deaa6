// Keys on elliptic curves: the curves' table, published signatures, and what does not verify.

#include "EcKey.h"
#include "RowName.h"
#include "VerifyG2.h"

#include <gtest/gtest.h>
#include <openssl/objects.h>

namespace {

using sim::Bytes;
using sim::Curve;
using sim::EcKey;
using sim::fromHex;
using sim::toHex;

Bytes ascii(const std::string& text)
{
    return Bytes(text.begin(), text.end());
}

TEST(Curves, haveTheIdentifiersOfTheirNames)
{
    ASSERT_EQ(sim::curves().size(), 6u);
    for (const sim::CurveDescription& row : sim::curves()) {
        const ASN1_OBJECT* object = OBJ_nid2obj(OBJ_txt2nid(row.groupName));
        ASSERT_NE(object, nullptr) << row.name;
        const unsigned char* data = OBJ_get0_data(object);
        EXPECT_EQ(row.oid, Bytes(data, data + OBJ_length(object))) << row.name;
        EXPECT_EQ(sim::curveOf(row.name), row.curve);
        EXPECT_EQ(sim::describe(row.curve).oid, row.oid);
    }
    EXPECT_THROW(sim::curveOf("P-256"), std::invalid_argument);
    EXPECT_THROW(sim::curveOf(""), std::invalid_argument);
}

struct VectorRow
{
    const char* name;
    Curve curve;
    const char* secret;
    const char* message;
    /// Whose SHA-2 is signed: the key's own, or a longer one.
    Curve digestOf;
    const char* r;
    const char* s;
};

void PrintTo(const VectorRow& row, std::ostream* out)
{
    *out << row.name;
}

// RFC 6979, A.2.5 to A.2.7.
constexpr const char* SecretP256 = "C9AFA9D845BA75166B5C215767B1D6934E50C3DB36E89B127B8A622B120F6721";
constexpr const char* SecretP384 =
    "6B9D3DAD2E1B8C1C05B19875B6659F4DE23C3B667BF297BA9AA47740787137D896D5724E4C70A825F872C9EA60D2EDF5";
constexpr const char* SecretP521 =
    "00FAD06DAA62BA3B25D2FB40133DA757205DE67F5BB0018FEE8C86E1B68C7E75CAA896EB32F1F47C70855836A6D16FCC1466F6D8"
    "FBEC67DB89EC0C08B0E996B83538";

class PublishedSignature : public testing::TestWithParam<VectorRow>
{};

TEST_P(PublishedSignature, isMade)
{
    const VectorRow& row = GetParam();
    const EcKey key(row.curve, fromHex(row.secret));
    const Bytes signature = key.signDigest(sim::sha2(row.digestOf, ascii(row.message)));
    EXPECT_EQ(toHex(signature), toHex(fromHex(std::string(row.r) + row.s)));
}

INSTANTIATE_TEST_SUITE_P(
    All, PublishedSignature,
    testing::Values(
        VectorRow{
            "p256Sample", Curve::NistP256, SecretP256, "sample", Curve::NistP256,
            "EFD48B2AACB6A8FD1140DD9CD45E81D69D2C877B56AAF991C34D0EA84EAF3716",
            "F7CB1C942D657C41D436C7A1B6E29F65F3E900DBB9AFF4064DC4AB2F843ACDA8"},
        VectorRow{
            "p256Test", Curve::NistP256, SecretP256, "test", Curve::NistP256,
            "F1ABB023518351CD71D881567B1EA663ED3EFCF6C5132B354F28D3B0B7D38367",
            "019F4113742A2B14BD25926B49C649155F267E60D3814B4C0CC84250E46F0083"},
        VectorRow{
            "p256SampleWithALongerDigest", Curve::NistP256, SecretP256, "sample", Curve::BrainpoolP512r1,
            "8496A60B5E9B47C825488827E0495B0E3FA109EC4568FD3F8D1097678EB97F00",
            "2362AB1ADBE2B8ADF9CB9EDAB740EA6049C028114F2460F96554F61FAE3302FE"},
        VectorRow{
            "p384Sample", Curve::NistP384, SecretP384, "sample", Curve::NistP384,
            "94EDBB92A5ECB8AAD4736E56C691916B3F88140666CE9FA73D64C4EA95AD133C81A648152E44ACF96E36DD1E80FABE4"
            "6",
            "99EF4AEB15F178CEA1FE40DB2603138F130E740A19624526203B6351D0A3A94FA329C145786E679E7B82C71A38628AC"
            "8"},
        VectorRow{
            "p521Sample", Curve::NistP521, SecretP521, "sample", Curve::NistP521,
            "00C328FAFCBD79DD77850370C46325D987CB525569FB63C5D3BC53950E6D4C5F174E25A1EE9017B5D450606ADD152B53"
            "49"
            "31D7D4E8455CC91F9B15BF05EC36E377FA",
            "00617CCE7CF5064806C467F678D3B4080D6F1CC50AF26CA209417308281B68AF282623EAA63E5B5C0723D8B8C37FF077"
            "7B"
            "1A20F8CCB1DCCC43997F1EE0E44DA4A67A"}),
    RowName());

TEST(EcKeys, haveThePublishedPublicPoint)
{
    EXPECT_EQ(
        toHex(EcKey(Curve::NistP256, fromHex(SecretP256)).publicPoint()),
        toHex(fromHex("04 60FED4BA255A9D31C961EB74C6356D68C049B8923B61FA6CE669622E60F29FB6"
                      "7903FE1008B8BC99A41AE9E95628BC64F2F1B20C2D7E9F5177A3C294D4462299")));
}

TEST(EcKeys, refuseNumbersThatAreNoPrivateKey)
{
    const Bytes order = fromHex("FFFFFFFF00000000FFFFFFFFFFFFFFFFBCE6FAADA7179E84F3B9CAC2FC632551");
    EXPECT_THROW(EcKey(Curve::NistP256, Bytes(32)), std::invalid_argument);
    EXPECT_THROW(EcKey(Curve::NistP256, {}), std::invalid_argument);
    EXPECT_THROW(EcKey(Curve::NistP256, order), std::invalid_argument);
    Bytes largest = order;
    --largest.back();
    EXPECT_EQ(EcKey(Curve::NistP256, largest).publicPoint().size(), 65u);
}

TEST(EcKeys, refuseDigestsThatAreNone)
{
    const EcKey key(Curve::NistP256, fromHex(SecretP256));
    EXPECT_THROW(key.signDigest(Bytes(20)), std::invalid_argument);
    EXPECT_THROW(key.signDigest({}), std::invalid_argument);
}

class EveryCurve : public testing::TestWithParam<sim::CurveDescription>
{
  protected:
    EcKey m_key = EcKey::fromLabel(GetParam().curve, "a label");
    sim::PublicKeyG2 m_public = {GetParam().curve, m_key.publicPoint()};
};

TEST_P(EveryCurve, makesSignaturesThatVerify)
{
    bool padded = false;
    for (int i = 0; i < 300; ++i) {
        const Bytes data = ascii("message " + std::to_string(i));
        const Bytes signature = m_key.sign(data);
        ASSERT_EQ(signature.size(), GetParam().signatureLength());
        ASSERT_TRUE(sim::verifySignatureG2(m_public, data, signature)) << i;
        padded |= signature.front() == 0x00 || signature.at(GetParam().fieldLength) == 0x00;
    }
    EXPECT_TRUE(padded) << "no number was shorter than its place";
}

TEST_P(EveryCurve, signsTheSameDataAlwaysTheSameWay)
{
    const EcKey again = EcKey::fromLabel(GetParam().curve, "a label");
    EXPECT_EQ(again.sign(ascii("data")), m_key.sign(ascii("data")));
    EXPECT_NE(m_key.sign(ascii("data")), m_key.sign(ascii("date")));
}

TEST_P(EveryCurve, hasAnotherKeyForAnotherLabel)
{
    const EcKey other = EcKey::fromLabel(GetParam().curve, "another label");
    EXPECT_NE(other.publicPoint(), m_key.publicPoint());
    EXPECT_FALSE(sim::verifySignatureG2(m_public, ascii("data"), other.sign(ascii("data"))));
}

TEST_P(EveryCurve, verifiesNothingThatWasChanged)
{
    const Bytes data = ascii("data");
    const Bytes signature = m_key.sign(data);
    EXPECT_FALSE(sim::verifySignatureG2(m_public, ascii("date"), signature));
    for (std::size_t i = 0; i < signature.size(); ++i) {
        Bytes tampered = signature;
        tampered[i] ^= 0x01;
        EXPECT_FALSE(sim::verifySignatureG2(m_public, data, tampered)) << "byte " << i;
    }
    Bytes longer = signature;
    longer.push_back(0x00);
    EXPECT_FALSE(sim::verifySignatureG2(m_public, data, longer));
    EXPECT_FALSE(sim::verifySignatureG2(m_public, data, {}));
    EXPECT_FALSE(sim::verifySignatureG2(m_public, data, Bytes(signature.size())));
}

TEST_P(EveryCurve, verifiesNothingWithAPointThatIsNotOnIt)
{
    const Bytes signature = m_key.sign(ascii("data"));
    sim::PublicKeyG2 key = m_public;
    key.point.back() ^= 0x01;
    EXPECT_FALSE(sim::verifySignatureG2(key, ascii("data"), signature));
    key.point.clear();
    EXPECT_FALSE(sim::verifySignatureG2(key, ascii("data"), signature));
}

TEST_P(EveryCurve, hasASignerThatGoesTheTwoStepsOfACard)
{
    const sim::EcSigner signer(m_key);
    const Bytes data = ascii("content of a file");
    EXPECT_EQ(signer.hash(data).size(), GetParam().digestLength);
    EXPECT_EQ(signer.signatureLength(), GetParam().signatureLength());
    EXPECT_EQ(signer.signHash(signer.hash(data)), m_key.sign(data));
}

INSTANTIATE_TEST_SUITE_P(All, EveryCurve, testing::ValuesIn(sim::curves()), curveName);

TEST(Sha2, isThatOfTheCurvesSize)
{
    // SHA-2 of "abc", well-known values.
    EXPECT_EQ(
        toHex(sim::sha2(Curve::BrainpoolP256r1, ascii("abc"))),
        toHex(fromHex("BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD")));
    EXPECT_EQ(
        toHex(sim::sha2(Curve::NistP384, ascii("abc"))),
        toHex(fromHex("CB00753F45A35E8BB5A03D699AC65007272C32AB0EDED163"
                      "1A8B605A43FF5BED8086072BA1E7CC2358BAECA134C825A7")));
    EXPECT_EQ(
        toHex(sim::sha2(Curve::NistP521, ascii("abc"))),
        toHex(fromHex("DDAF35A193617ABACC417349AE20413112E6FA4E89A97EA20A9EEEE64B55D39A"
                      "2192992A274FC1A836BA3C23A3FEEBBD454D4423643CE80E2A9AC94FA54CA49F")));
}

} // namespace

#include <scardverify/detail/Curve.h>

#include <simulator/Curve.h>

#include <gtest/gtest.h>

namespace {

using scard::verify::detail::Curve;
using scard::verify::detail::curveOf;

TEST(CurveOfOidTest, KnowsTheSixOfTheRegulation)
{
    const char* const names[] = {"NIST P-256",      "brainpoolP256r1", "NIST P-384",
                                 "brainpoolP384r1", "brainpoolP512r1", "NIST P-521"};
    const char* const digests[] = {"SHA256", "SHA256", "SHA384", "SHA384", "SHA512", "SHA512"};
    for (const sim::CurveDescription& expected : sim::curves()) {
        const QByteArray oid(
            reinterpret_cast<const char*>(expected.oid.data()), static_cast<int>(expected.oid.size()));
        const Curve* curve = curveOf(oid);
        ASSERT_NE(curve, nullptr) << expected.name;
        const auto index = static_cast<std::size_t>(expected.curve);
        EXPECT_STREQ(curve->name, names[index]);
        EXPECT_STREQ(curve->digestName, digests[index]);
        EXPECT_EQ(curve->oid, oid);
        EXPECT_EQ(static_cast<std::size_t>(curve->fieldLength), expected.fieldLength);
        EXPECT_EQ(static_cast<std::size_t>(curve->signatureLength()), expected.signatureLength());
        EXPECT_EQ(static_cast<std::size_t>(curve->pointLength()), expected.pointLength());
    }
}

TEST(CurveOfOidTest, KnowsNoOther)
{
    for (const char* oid :
         {"", "2A", "2A8648CE3D03010A", "2A8648CE3D0301", "2A8648CE3D03010700", "2B81040021"})
        EXPECT_EQ(curveOf(QByteArray::fromHex(oid)), nullptr) << oid;
}

} // namespace

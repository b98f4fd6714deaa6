// A whole second-generation driver card through its commands: what can be read, written and signed, and the
// forms of its certificates.

#include "Card.h"
#include "DriverCard.h"
#include "RowName.h"
#include "TestPki.h"
#include "TestPkiG2.h"
#include "VerifyG1.h"
#include "VerifyG2.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace {

using sim::Bytes;
using sim::CertificateFiles;
using sim::Curve;
using sim::DriverParametersG2;
using sim::fromHex;
using sim::readU32;
using sim::slice;
using sim::toHex;

DriverParametersG2 version1()
{
    return {};
}

DriverParametersG2 version2()
{
    DriverParametersG2 parameters;
    parameters.version2 = true;
    return parameters;
}

class WholeCardG2 : public testing::Test
{
  protected:
    static Bytes ask(sim::Card& card, const std::string& command)
    {
        return card.transmit(fromHex(command)).value_or(Bytes{});
    }

    static std::string hex(std::uint16_t number)
    {
        Bytes bytes;
        sim::appendU16(bytes, number);
        return toHex(bytes);
    }

    static std::vector<std::uint16_t> signedFiles()
    {
        return {0x0501, 0x0520, 0x050E, 0x0521, 0x0502, 0x0503, 0x0504, 0x0505, 0x0506, 0x0507,
                0x0508, 0x0522, 0x0523, 0x0524, 0x0525, 0x0526, 0x0527, 0x0528, 0x0529, 0x0530};
    }
};

constexpr const char* SelectG1 = "00 A4 04 0C 06 FF 54 41 43 48 4F";
constexpr const char* SelectG2 = "00 A4 04 0C 06 FF 53 4D 52 44 54";
constexpr const char* Hash = "80 2A 90 00";

class WholeCardOfACurve : public WholeCardG2, public testing::WithParamInterface<sim::CurveDescription>
{};

TEST_P(WholeCardOfACurve, readsSignsAndVerifiesEveryFile)
{
    DriverParametersG2 parameters = version2();
    parameters.curve = GetParam().curve;
    sim::Card card(sim::makeDriverCardG2(parameters));
    const auto root = sim::publicKeyFromRootCertificateG2(sim::rootCertificateG2(GetParam().curve));
    ASSERT_TRUE(root);
    const auto authority = sim::verifyCertificateG2(*card.file(sim::AidG2, 0xC108), *root);
    ASSERT_TRUE(authority);
    const auto signing = sim::verifyCertificateG2(*card.file(sim::AidG2, 0xC101), authority->key);
    const auto mutual = sim::verifyCertificateG2(*card.file(sim::AidG2, 0xC100), authority->key);
    ASSERT_TRUE(signing && mutual);
    const Bytes serial = slice(*card.file(sim::MasterFile, 0x0002), 1, 8);
    EXPECT_EQ(signing->holder, serial);
    EXPECT_EQ(mutual->holder, serial);
    EXPECT_EQ(signing->effective, mutual->effective);
    const Bytes& identification = *card.file(sim::AidG2, 0x0520);
    EXPECT_EQ(mutual->effective, readU32(identification, 57));
    EXPECT_EQ(mutual->expires, readU32(identification, 61));
    EXPECT_GT(signing->expires, mutual->expires);
    EXPECT_LE(authority->effective, signing->effective);
    EXPECT_GE(authority->expires, signing->expires);
    EXPECT_TRUE(sim::verifyCertificateG2(
        *card.file(sim::AidG2, 0xC109),
        *sim::publicKeyFromRootCertificateG2(sim::previousRootCertificateG2(GetParam().curve))));

    const auto length = static_cast<std::uint8_t>(GetParam().signatureLength());
    const std::string sign = "00 2A 9E 9A " + toHex({length});
    ASSERT_EQ(toHex(ask(card, SelectG2)), "90 00");
    for (const std::uint16_t fid : signedFiles()) {
        ASSERT_EQ(toHex(ask(card, "00 A4 02 0C 02 " + hex(fid))), "90 00") << fid;
        const Bytes* stored = card.file(sim::AidG2, fid);
        ASSERT_TRUE(stored);
        Bytes read;
        while (read.size() < stored->size()) {
            const std::size_t step = std::min<std::size_t>(255, stored->size() - read.size());
            const Bytes answer =
                ask(card, "00 B0 " + hex(static_cast<std::uint16_t>(read.size())) + " " +
                              toHex({static_cast<std::uint8_t>(step)}));
            ASSERT_EQ(answer.size(), step + 2);
            sim::appendBytes(read, slice(answer, 0, step));
        }
        EXPECT_EQ(read, *stored);
        ASSERT_EQ(toHex(ask(card, Hash)), "90 00") << fid;
        const Bytes signature = ask(card, sign);
        ASSERT_EQ(signature.size(), length + 2u);
        EXPECT_TRUE(sim::verifySignatureG2(signing->key, read, slice(signature, 0, length))) << fid;
    }
}

TEST_P(WholeCardOfACurve, signsWithTheLengthOfItsCurveOnly)
{
    DriverParametersG2 parameters = version1();
    parameters.curve = GetParam().curve;
    sim::Card card(sim::makeDriverCardG2(parameters));
    ask(card, SelectG2);
    ask(card, "00 A4 02 0C 02 05 01");
    ASSERT_EQ(toHex(ask(card, Hash)), "90 00");
    for (const std::uint8_t le :
         {std::uint8_t{0x40}, std::uint8_t{0x60}, std::uint8_t{0x80}, std::uint8_t{0x84}}) {
        const Bytes answer = ask(card, "00 2A 9E 9A " + toHex({le}));
        if (le == GetParam().signatureLength()) {
            EXPECT_EQ(answer.size(), le + 2u);
        } else {
            EXPECT_EQ(toHex(answer), "67 00") << int{le};
        }
    }
    EXPECT_EQ(toHex(ask(card, "00 2A 9E 9A 00")), "67 00");
}

INSTANTIATE_TEST_SUITE_P(All, WholeCardOfACurve, testing::ValuesIn(sim::curves()), curveName);

TEST_F(WholeCardG2, signsInEachApplicationWithItsOwnKey)
{
    sim::Card card(sim::makeDriverCardG2(version1()));
    const auto authority =
        sim::verifyCertificateG1(*card.file(sim::AidG1, 0xC108), *sim::publicKeyFromRootG1(sim::rootKeyG1()));
    ASSERT_TRUE(authority);
    const auto certificate = sim::verifyCertificateG1(*card.file(sim::AidG1, 0xC100), authority->key);
    ASSERT_TRUE(certificate);
    EXPECT_EQ(certificate->holder, slice(*card.file(sim::MasterFile, 0x0002), 1, 8));

    ask(card, SelectG1);
    ask(card, "00 A4 02 0C 02 05 20");
    ask(card, Hash);
    const Bytes signature = ask(card, "00 2A 9E 9A 80");
    ASSERT_EQ(signature.size(), 130u);
    EXPECT_TRUE(
        sim::verifySignatureG1(certificate->key, *card.file(sim::AidG1, 0x0520), slice(signature, 0, 128)));
    // The stored hash does not survive the way to the other application, nor to the same one.
    EXPECT_EQ(toHex(ask(card, SelectG2)), "90 00");
    EXPECT_EQ(toHex(ask(card, "00 2A 9E 9A 40")), "69 85");
    ask(card, "00 A4 02 0C 02 05 20");
    ask(card, Hash);
    EXPECT_EQ(toHex(ask(card, SelectG2)), "90 00");
    EXPECT_EQ(toHex(ask(card, "00 2A 9E 9A 40")), "69 85");
}

TEST_F(WholeCardG2, findsEveryFileByItsShortIdentifier)
{
    const std::pair<std::uint16_t, int> identifiers[] = {
        {0x0501, 1},  {0xC100, 2},  {0xC101, 3},  {0xC108, 4},  {0xC109, 5},  {0x0520, 6},
        {0x050E, 7},  {0x0521, 10}, {0x0502, 12}, {0x0503, 13}, {0x0504, 14}, {0x0505, 15},
        {0x0506, 16}, {0x0507, 17}, {0x0508, 18}, {0x0522, 19}, {0x0523, 20}, {0x0524, 21},
        {0x0525, 22}, {0x0526, 23}, {0x0527, 24}, {0x0528, 25}, {0x0529, 26}, {0x0530, 27}};
    sim::Card card(sim::makeDriverCardG2(version2()));
    EXPECT_EQ(toHex(ask(card, "00 B0 9E 00 14")), toHex(*card.file(sim::MasterFile, 0x2F00)) + " 90 00");
    ask(card, SelectG2);
    std::set<int> used = {30};
    for (const auto& [fid, sfid] : identifiers) {
        used.insert(sfid);
        const Bytes& content = *card.file(sim::AidG2, fid);
        const Bytes answer = ask(card, "00 B0 " + toHex({static_cast<std::uint8_t>(0x80 + sfid)}) + " 00 04");
        EXPECT_EQ(toHex(answer), toHex(slice(content, 0, 4)) + " 90 00") << fid;
        // It is current now.
        EXPECT_EQ(toHex(ask(card, "00 B0 00 01 01")), toHex(slice(content, 1, 1)) + " 90 00") << fid;
    }
    for (int sfid = 1; sfid <= 30; ++sfid) {
        if (used.count(sfid) == 0) {
            EXPECT_EQ(
                toHex(ask(card, "00 B0 " + toHex({static_cast<std::uint8_t>(0x80 + sfid)}) + " 00 01")),
                "6A 82")
                << sfid;
        }
    }
    ask(card, SelectG1);
    EXPECT_EQ(toHex(ask(card, "00 B0 81 00 01")), "6A 82") << "none in the first generation";
}

TEST_F(WholeCardG2, showsItsDirectoryInTheMasterFileOnly)
{
    sim::Card card(sim::makeDriverCardG2(version1()));
    EXPECT_EQ(toHex(ask(card, "00 A4 02 0C 02 2F 00")), "90 00");
    EXPECT_EQ(
        toHex(ask(card, "00 B0 00 00 14")),
        "61 08 4F 06 FF 54 41 43 48 4F 61 08 4F 06 FF 53 4D 52 44 54 90 00");
    for (const char* application : {SelectG1, SelectG2}) {
        ask(card, application);
        EXPECT_EQ(toHex(ask(card, "00 A4 02 0C 02 2F 00")), "6A 82");
    }
}

TEST_F(WholeCardG2, guardsTheVuConfiguration)
{
    sim::Card card(sim::makeDriverCardG2(version2()));
    ask(card, SelectG2);
    EXPECT_EQ(toHex(ask(card, "00 A4 02 0C 02 05 40")), "90 00");
    EXPECT_EQ(toHex(ask(card, "00 B0 00 00 01")), "69 82");
    EXPECT_EQ(toHex(ask(card, "00 B0 9E 00 01")), "69 82");
    EXPECT_EQ(toHex(ask(card, "00 B1 00 00 03 54 01 00 00")), "69 82");
    EXPECT_EQ(toHex(ask(card, "00 D6 00 00 01 00")), "69 82");
    sim::Card older(sim::makeDriverCardG2(version1()));
    ask(older, SelectG2);
    EXPECT_EQ(toHex(ask(older, "00 A4 02 0C 02 05 40")), "6A 82");
    EXPECT_EQ(toHex(ask(older, "00 A4 02 0C 02 05 25")), "6A 82");
}

TEST_F(WholeCardG2, letsOnlyTheCardDownloadBeWrittenInEachApplication)
{
    sim::Card card(sim::makeDriverCardG2(version2()));
    ask(card, SelectG2);
    std::vector<std::uint16_t> files = signedFiles();
    files.insert(files.end(), {0xC100, 0xC101, 0xC108, 0xC109});
    for (const std::uint16_t fid : files) {
        if (fid != 0x050E) {
            ask(card, "00 A4 02 0C 02 " + hex(fid));
            EXPECT_EQ(toHex(ask(card, "00 D6 00 00 01 00")), "69 82") << fid;
        }
    }
    ask(card, "00 A4 02 0C 02 05 0E");
    EXPECT_EQ(toHex(ask(card, "00 D6 00 00 04 65 E6 60 80")), "90 00");
    EXPECT_EQ(toHex(*card.file(sim::AidG2, 0x050E)), "65 E6 60 80");
    EXPECT_NE(toHex(*card.file(sim::AidG1, 0x050E)), "65 E6 60 80");
    ask(card, SelectG1);
    ask(card, "00 A4 02 0C 02 05 0E");
    EXPECT_EQ(toHex(ask(card, "00 D6 00 00 04 65 E6 60 81")), "90 00");
    EXPECT_EQ(toHex(*card.file(sim::AidG1, 0x050E)), "65 E6 60 81");
    EXPECT_EQ(toHex(*card.file(sim::AidG2, 0x050E)), "65 E6 60 80");
}

TEST_F(WholeCardG2, hasTheOddFormOfRead)
{
    sim::Card card(sim::makeDriverCardG2(version2()));
    ask(card, SelectG2);
    ask(card, "00 A4 02 0C 02 05 29");
    const Bytes& content = *card.file(sim::AidG2, 0x0529);
    EXPECT_EQ(
        toHex(ask(card, "00 B1 00 00 04 54 02 01 00 00")),
        "53 81 FD " + toHex(slice(content, 256, 253)) + " 90 00");
}

struct CertificateRow
{
    const char* name;
    Curve curve;
    CertificateFiles form;
    /// Of C100, C101 and C108; 0: not on the card.
    std::size_t size;
};

void PrintTo(const CertificateRow& row, std::ostream* out)
{
    *out << row.name;
}

class CertificateForm : public testing::TestWithParam<CertificateRow>
{};

TEST_P(CertificateForm, fillsTheFilesOfTheCertificates)
{
    DriverParametersG2 parameters = version1();
    parameters.curve = GetParam().curve;
    const sim::Card exact(sim::makeDriverCardG2(parameters));
    parameters.certificateFiles = GetParam().form;
    const sim::Card card(sim::makeDriverCardG2(parameters));
    for (const std::uint16_t fid : {std::uint16_t{0xC100}, std::uint16_t{0xC101}, std::uint16_t{0xC108}}) {
        const Bytes* content = card.file(sim::AidG2, fid);
        ASSERT_EQ(content != nullptr, GetParam().size != 0);
        if (!content) {
            continue;
        }
        ASSERT_EQ(content->size(), GetParam().size);
        Bytes expected = GetParam().form == CertificateFiles::Empty ? Bytes() : *exact.file(sim::AidG2, fid);
        expected.resize(GetParam().size, 0x00);
        EXPECT_EQ(*content, expected);
    }
    EXPECT_EQ(*card.file(sim::AidG2, 0xC109), *exact.file(sim::AidG2, 0xC109)) << "has its own form";
    EXPECT_EQ(*card.file(sim::AidG1, 0xC100), *exact.file(sim::AidG1, 0xC100));
}

TEST_P(CertificateForm, fillsTheFileOfTheLinkAlone)
{
    DriverParametersG2 parameters = version1();
    parameters.curve = GetParam().curve;
    const sim::Card exact(sim::makeDriverCardG2(parameters));
    parameters.linkCertificate = GetParam().form;
    const sim::Card card(sim::makeDriverCardG2(parameters));
    const Bytes* content = card.file(sim::AidG2, 0xC109);
    ASSERT_EQ(content != nullptr, GetParam().size != 0);
    if (content) {
        EXPECT_EQ(content->size(), GetParam().size);
    }
    EXPECT_EQ(*card.file(sim::AidG2, 0xC100), *exact.file(sim::AidG2, 0xC100));
}

INSTANTIATE_TEST_SUITE_P(
    All, CertificateForm,
    testing::Values(
        CertificateRow{"exact", Curve::BrainpoolP256r1, CertificateFiles::Exact, 205},
        CertificateRow{"padded", Curve::BrainpoolP256r1, CertificateFiles::Padded, 341},
        CertificateRow{"empty", Curve::BrainpoolP256r1, CertificateFiles::Empty, 204},
        CertificateRow{"missing", Curve::BrainpoolP256r1, CertificateFiles::Missing, 0},
        CertificateRow{"exactLarge", Curve::BrainpoolP512r1, CertificateFiles::Exact, 337},
        CertificateRow{"paddedLargest", Curve::NistP521, CertificateFiles::Padded, 341}),
    RowName());

} // namespace

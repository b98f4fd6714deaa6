// A signature names no EF. Anyone can write the four bytes of EF_Card_Download, which needs no key, and have
// the card sign them: what is put in the place of another EF has another length.
#include "Image.h"
#include "Roots.h"
#include "Told.h"

#include <cli/Downloads.h>
#include <scardverify/VerifyImage.h>

#include <gmock/gmock.h>

namespace {

using namespace scard::verify;
using namespace test;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

/// What EF_Card_Download can be made to hold: even where the kind of card stands, it is that of a driver
/// card.
const QByteArray freeBytes(4, '\x01');

/// Puts @p payload, signed by the card, in the place of an EF.
Image withSigned(Image image, unsigned int fid, unsigned int dataType, const QByteArray& payload)
{
    image.payload(fid, dataType) = payload;
    return image.sign(fid, dataType);
}

TEST(LengthTest, TellsBytesOfEfCardDownloadInThePlaceOfEachOtherEf)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        const Image whole = driverV2();
        for (const Record& record : whole.records) {
            const bool isSigned = record.type == dataType && record.fid < 0xC100 && record.fid > 0x0005;
            if (!isSigned || record.fid == 0x050E)
                continue;
            SCOPED_TRACE(record.fid);
            const Image forged = withSigned(whole, record.fid, dataType, freeBytes);
            const VerificationReport report = verifyImage(forged.bytes(), {});
            EXPECT_EQ(report.verdict, Verdict::Altered);
            EXPECT_THAT(codesOf(report), Contains(FindingCode::RecordTooShort));
            EXPECT_THAT(codesOf(report), Not(Contains(FindingCode::SignatureInvalid)));
        }
    }
}

TEST(LengthTest, SaysBothLengths)
{
    const Image image = driver();
    const int length = image.payload(0x0502, dataG1).size();
    const QByteArray longer = image.payload(0x0502, dataG1) + 'x';
    expectTold(
        withSigned(image, 0x0502, dataG1, "abcd"), Verdict::Altered,
        {{FindingCode::RecordTooShort, Severity::Altered, 0x0502, dataG1,
          "EF_EventsData has 4 bytes; on this card it has " + std::to_string(length) + "."}});
    expectTold(
        withSigned(image, 0x0502, dataG1, longer), Verdict::Unproven,
        {{FindingCode::RecordTooLong, Severity::Unproven, 0x0502, dataG1,
          "EF_EventsData has " + std::to_string(length + 1) + " bytes; on this card it has " +
              std::to_string(length) + "."}});
}

TEST(LengthTest, TellsACopyOfAnotherEf)
{
    const Image image = driver();
    const Image copied = withSigned(image, 0x0508, dataG1, image.payload(0x0507, dataG1));
    expectTold(
        copied, Verdict::Altered,
        {{FindingCode::RecordTooShort, Severity::Altered, 0x0508, dataG1,
          "EF_Control_Activity_Data has 19 bytes; on this card it has 46."}});
}

TEST(LengthTest, TellsCountsThatAreTooFewBytes)
{
    // What is left of the counts would let the EFs of version 2 be left out.
    Image image = withSigned(secondAlone(), 0x0501, dataG2, QByteArray::fromHex("01010000"));
    image.removeEf(0x0525, dataG2).removeEf(0x0528, dataG2);
    const VerificationReport report = verifyImage(image.bytes(), {});
    EXPECT_EQ(report.verdict, Verdict::Altered);
    EXPECT_THAT(
        textsOf(report), Contains("EF_Application_Identification has 4 bytes; on this card it has 17."));
}

TEST(LengthTest, TellsTheFreeBytesOfAWorkshopCardInThePlaceOfItsCalibrations)
{
    const Image image =
        withSigned(Image(smallDownload("workshop").file), 0x050A, dataG1, QByteArray(2, '\0'));
    EXPECT_THAT(codesOf(verifyImage(image.bytes(), {})), Contains(FindingCode::RecordTooShort));
}

TEST(LengthTest, OneWrongCountAccusesNoOtherEf)
{
    const struct
    {
        unsigned int fid;
        unsigned int type;
        int place;
        const char* name;
    } rows[] = {
        {0x0501, dataG1, 3, "EF_Application_Identification"}, // events of each kind
        {0x0501, dataG2, 3, "EF_Application_Identification"},
        {0x0525, dataG2, 3, "EF_Application_Identification_V2"}, // border crossings
    };
    for (const auto& row : rows) {
        Image image = driverV2();
        QByteArray& counts = image.payload(row.fid, row.type);
        counts[row.place] = static_cast<char>(counts.at(row.place) + 1);
        expectTold(
            image, Verdict::Altered,
            {{FindingCode::SignatureInvalid, Severity::Altered, row.fid, row.type,
              std::string(row.name) + ": the signature does not hold. Data or signature was changed, or they "
                                      "are of two cards."}});
    }
}

TEST(LengthTest, TellsCountsThatTheCardSignedButDoesNotKeepTo)
{
    Image image = driver();
    const int length = image.payload(0x0503, dataG1).size();
    QByteArray counts = image.payload(0x0501, dataG1);
    const int faults = counts.at(4);
    counts[4] = static_cast<char>(faults + 1);
    expectTold(
        withSigned(image, 0x0501, dataG1, counts), Verdict::Altered,
        {{FindingCode::RecordTooShort, Severity::Altered, 0x0503, dataG1,
          "EF_FaultsData has " + std::to_string(length) + " bytes; on this card it has " +
              std::to_string(length / faults * (faults + 1)) + "."}});
}

TEST(LengthTest, DoesNotAskForTheLengthOfWhatTheCardDidNotSign)
{
    Image image = driver();
    image.payload(0x0502, dataG1).chop(1);
    expectTold(
        image, Verdict::Altered,
        {{FindingCode::SignatureInvalid, Severity::Altered, 0x0502, dataG1,
          "EF_EventsData: the signature does not hold. Data or signature was changed, or they are of two "
          "cards."}});
}

TEST(LengthTest, IsToldBehindTheSignaturesAndBeforeWhatIsMissing)
{
    Image image = withSigned(driver(), 0x0502, dataG1, freeBytes);
    image.removeEf(0x0521, dataG1).remove(0x0522, signatureG1);
    EXPECT_THAT(
        codesOf(verifyImage(image.bytes(), roots())),
        ElementsAre(FindingCode::SignatureMissing, FindingCode::RecordTooShort, FindingCode::RecordMissing));
}

TEST(LengthTest, TellsAChipsEfOfAnotherLength)
{
    Image image = driver();
    image.payload(0x0005, dataG1).append(QByteArray(60000, 'x'));
    expectTold(
        image, Verdict::Unproven,
        {{FindingCode::RecordTooLong, Severity::Unproven, 0x0005, dataG1,
          "EF_IC has 60008 bytes; on this card it has 8."}});
}

TEST(LengthTest, HoldsForEveryKindOfCard)
{
    for (const auto* downloads : {&realDownloads(), &smallDownloads()}) {
        for (const CardFile& download : *downloads) {
            const VerificationReport report = verifyImage(download.file, {});
            EXPECT_THAT(codesOf(report), Not(Contains(FindingCode::RecordTooShort))) << download.name;
            EXPECT_THAT(codesOf(report), Not(Contains(FindingCode::RecordTooLong))) << download.name;
        }
    }
}

} // namespace

// Which EFs belong into a download, and what is told of others.
#include "Image.h"
#include "Roots.h"
#include "Told.h"

#include <cli/Downloads.h>
#include <scard/ElementaryFile.h>
#include <scardverify/VerifyImage.h>
#include <simulator/ControlCard.h>
#include <support/DownloadScript.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <support/FileRecords.h>
#include <utility>

namespace {

using namespace scard::verify;
using namespace test;
using testing::ElementsAre;

// EFs that a download may lack.

TEST(RulesTest, MissesEachEfThatEveryCardOfTheKindHas)
{
    /// The last download is not part of the regulation's download, and the chip not of an application.
    const std::set<unsigned int> optional = {0x050E, 0x0509};
    for (const char* card : {"driver", "driverG2", "driverV2", "workshop", "workshopV2", "company"}) {
        const Image image(smallDownload(card).file);
        for (const Record& record : image.records) {
            const bool isSignedData = record.type % 2 == 0 && record.fid >= 0x0500 && record.fid < 0xC000;
            if (!isSignedData || optional.count(record.fid) != 0 || record.fid == 0x0501)
                continue;
            const bool isFirst = record.type == dataG1;
            SCOPED_TRACE(testing::Message() << card << ' ' << record.fid);
            const QString name = scard::efName(static_cast<unsigned short>(record.fid), !isFirst);
            Image rest = image;
            expectTold(
                rest.removeEf(record.fid, record.type), Verdict::Unproven,
                {{FindingCode::RecordMissing, Severity::Unproven, record.fid, noRecord,
                  name.toStdString() + " is not in the file; every card of this kind has it."}});
        }
    }
}

TEST(RulesTest, DoesNotMissTheLastDownload)
{
    for (const auto& [card, fid] : {std::pair{"driver", 0x050EU}, std::pair{"workshop", 0x0509U}}) {
        Image image(smallDownload(card).file);
        expectTold(image.removeEf(fid, dataG1), Verdict::Genuine, {});
    }
}

/// What nothing vouches for in an EF.
std::vector<UncoveredPart> uncoveredOf(const VerificationReport& report, unsigned int fid)
{
    std::vector<UncoveredPart> parts;
    for (const UncoveredPart& each : report.uncovered) {
        if (each.fid == fid)
            parts.push_back(each);
    }
    return parts;
}

/// That all of it is one part.
void expectUncovered(
    const VerificationReport& report, unsigned int fid, Generation generation, long long offset,
    long long length)
{
    const std::vector<UncoveredPart> parts = uncoveredOf(report, fid);
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_EQ(parts.front().offset, offset);
    EXPECT_EQ(parts.front().length, length);
    EXPECT_EQ(parts.front().generation, generation);
}

constexpr int headerLength = 5;

/// The last download of a card, and how many bytes it has.
struct LastDownload
{
    const char* card;
    unsigned int fid;
    unsigned int type;
    int length;
};

const LastDownload lastDownloads[] = {
    {"driver", 0x050E, dataG1, 4},
    {"driverV2", 0x050E, dataG2, 4},
    {"workshop", 0x0509, dataG1, 2},
    {"workshopV2", 0x0509, dataG2, 2},
};

TEST(RulesTest, DoesNotAskForTheSignatureOfTheLastDownload)
{
    for (const LastDownload& row : lastDownloads) {
        SCOPED_TRACE(row.card);
        Image none(smallDownload(row.card).file);
        none.remove(row.fid, row.type + 1);
        Image empty(smallDownload(row.card).file);
        empty.payload(row.fid, row.type + 1).clear();
        for (const auto& [image, signatureLength] : {std::pair{none, 0}, std::pair{empty, headerLength}}) {
            expectTold(image, Verdict::Genuine, {});
            const VerificationReport report = verifyImage(image.bytes(), allRoots());
            const ApplicationReport& application = report.applications.back();
            const auto record = std::find_if(
                application.records.begin(), application.records.end(),
                [&row](const RecordReport& each) { return each.fid == row.fid; });
            ASSERT_NE(record, application.records.end());
            EXPECT_EQ(record->signature, SignatureVerdict::NotSigned);
            expectUncovered(
                report, row.fid, row.type == dataG1 ? Generation::First : Generation::Second,
                image.offsetOf(row.fid, row.type), headerLength + row.length + signatureLength);
        }
    }
}

TEST(RulesTest, TellsALastDownloadWithASignatureThatDoesNotHold)
{
    for (const LastDownload& row : lastDownloads) {
        Image image(smallDownload(row.card).file);
        QByteArray& payload = image.payload(row.fid, row.type);
        payload[0] = static_cast<char>(payload.at(0) ^ 0x01);
        expectTold(
            image, Verdict::Altered,
            {{FindingCode::SignatureInvalid, Severity::Altered, row.fid, row.type,
              "EF_Card_Download: the signature does not hold. Data or signature was changed, or they are of "
              "two cards."}});
    }
}

TEST(RulesTest, TakesEfsThatAreReadWithKeysOnly)
{
    const struct
    {
        const char* card;
        unsigned int fid;
        unsigned int type;
    } rows[] = {
        {"workshop", 0x050B, dataG1},
        {"workshopV2", 0x050B, dataG2},
        {"workshopV2", 0x0540, dataG2},
        {"driverV2", 0x0540, dataG2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.card << ' ' << row.fid);
        Image image(smallDownload(row.card).file);
        image.append({row.fid, row.type, "abc"});
        expectTold(image, Verdict::Genuine, {});
        expectUncovered(
            verifyImage(image.bytes(), allRoots()), row.fid,
            row.type == dataG1 ? Generation::First : Generation::Second, image.offsetOf(row.fid, row.type),
            headerLength + 3);
    }
}

TEST(RulesTest, TellsEfsThatAreReadWithKeysOnCardsThatDoNotHaveThem)
{
    const struct
    {
        const char* card;
        unsigned int fid;
        unsigned int type;
        const char* text;
    } rows[] = {
        {"driver", 0x050B, dataG1,
         "EF_Sensor_Installation_Data is no EF of this application, and is not signed."},
        {"driverV2", 0x050B, dataG2,
         "EF_Sensor_Installation_Data is no EF of this application, and is not signed."},
        {"driverG2", 0x0540, dataG2, "EF_VU_Configuration is no EF of this application, and is not signed."},
        {"driverV2", 0x0540, dataG1, "EF_VU_Configuration is no EF of this application, and is not signed."},
    };
    for (const auto& row : rows) {
        Image image(smallDownload(row.card).file);
        image.append({row.fid, row.type, "abc"});
        expectTold(
            image, Verdict::Unproven,
            {{FindingCode::UnexpectedRecord, Severity::Unproven, row.fid, row.type, row.text}});
    }
}

TEST(RulesTest, DoesNotMissTheIdentificationOfACompanyCardWhichTheFirstApplicationKeepsToItself)
{
    const Image image(smallDownload("company").file);
    EXPECT_EQ(
        image.bytes(), without(image.bytes(), [](const FileRecord& record) { return record.fid == 0x0520; }));
    expectTold(image, Verdict::Genuine, {});
}

TEST(RulesTest, DoesNotKnowTheCardWithoutItsApplicationIdentification)
{
    Image image = driver();
    expectTold(
        image.removeEf(0x0501, dataG1), Verdict::Unproven,
        {{FindingCode::RecordMissing, Severity::Unproven, 0x0501, noRecord,
          "EF_Application_Identification does not say what kind of card it is."}});
    EXPECT_EQ(verifyImage(image.bytes(), roots()).applications.front().cardType, 0);
}

TEST(RulesTest, DoesNotKnowTheCardByBytesThatAreNoApplicationIdentification)
{
    // The four bytes are a date that the card signed in EF_Card_Download.
    for (const QByteArray& bytes : {QByteArray(1, '\x01'), QByteArray::fromHex("65E66080")}) {
        Image image = driver();
        image.payload(0x0501, dataG1) = bytes;
        expectTold(
            image.sign(0x0501, dataG1), Verdict::Unproven,
            {{FindingCode::RecordMissing, Severity::Unproven, 0x0501, noRecord,
              "EF_Application_Identification does not say what kind of card it is."}});
    }
}

TEST(RulesTest, DoesNotKnowACardOfAnotherType)
{
    Image image = driver();
    image.payload(0x0501, dataG1)[0] = '\x06';
    expectTold(
        image.sign(0x0501, dataG1), Verdict::Unproven,
        {{FindingCode::RecordMissing, Severity::Unproven, 0x0501, noRecord,
          "EF_Application_Identification does not say what kind of card it is."}});
}

TEST(RulesTest, TellsTheApplicationIdentificationOfAnotherKindOfCard)
{
    Image first = driver();
    first.payload(0x0501, dataG1)[0] = '\x02';
    expectTold(
        first.sign(0x0501, dataG1), Verdict::Altered,
        {{FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC100, dataG1,
          "EF_Card_Certificate holds a certificate for a driver card, not for a workshop card."},
         {FindingCode::UnknownSignedRecord, Severity::Unproven, 0x050E, dataG1,
          "EF_Card_Download is no known EF of this application; the card signed it."},
         {FindingCode::UnknownSignedRecord, Severity::Unproven, 0x0521, dataG1,
          "EF_Driving_License_Info is no known EF of this application; the card signed it."},
         {FindingCode::RecordTooShort, Severity::Altered, 0x0501, dataG1,
          "EF_Application_Identification has 10 bytes; on this card it has 11."},
         {FindingCode::RecordTooShort, Severity::Altered, 0x0520, dataG1,
          "EF_Identification has 143 bytes; on this card it has 211."},
         {FindingCode::RecordMissing, Severity::Unproven, 0x050A, noRecord,
          "EF_Calibration is not in the file; every card of this kind has it."}});

    Image second = driverV2();
    second.payload(0x0501, dataG2)[0] = '\x02';
    expectTold(
        second.sign(0x0501, dataG2), Verdict::Altered,
        {{FindingCode::ApplicationsOfTwoCards, Severity::Altered, 0, noRecord,
          "The first application is of a card of type 1, the second of one of type 2."},
         {FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC100, dataG2,
          "EF_MA_Certificate holds a certificate for the mutual authentication of a driver card, not for "
          "the mutual authentication of a workshop card."},
         {FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC101, dataG2,
          "EF_Card_Sign_Certificate holds a certificate for the signatures of a driver card, not for the "
          "signatures of a workshop card."},
         {FindingCode::UnknownSignedRecord, Severity::Unproven, 0x050E, dataG2,
          "EF_Card_Download is no known EF of this application; the card signed it."},
         {FindingCode::UnknownSignedRecord, Severity::Unproven, 0x0521, dataG2,
          "EF_Driving_License_Info is no known EF of this application; the card signed it."},
         {FindingCode::RecordTooShort, Severity::Altered, 0x0501, dataG2,
          "EF_Application_Identification has 17 bytes; on this card it has 19."},
         {FindingCode::RecordTooShort, Severity::Altered, 0x0520, dataG2,
          "EF_Identification has 143 bytes; on this card it has 211."},
         {FindingCode::RecordMissing, Severity::Unproven, 0x050A, noRecord,
          "EF_Calibration is not in the file; every card of this kind has it."},
         {FindingCode::RecordMissing, Severity::Unproven, 0x0531, noRecord,
          "EF_Calibration_Add_Data is not in the file; every card of this kind has it."}});
}

// EFs that do not belong there.

TEST(RulesTest, TellsAnEfThatNoCardHas)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        Image image = driverV2();
        image.append({0x0599, dataType, "abc"});
        expectTold(
            image, Verdict::Unproven,
            {{FindingCode::UnexpectedRecord, Severity::Unproven, 0x0599, dataType,
              "EF 0599 is no EF of this application, and is not signed."}});
    }
}

TEST(RulesTest, CannotJudgeAnEfThatIsNotKnownButSigned)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        Image image = driverV2();
        image.append({0x0599, dataType, "abc"});
        image.append({0x0599, dataType + 1, cardSignature("abc", dataType)});
        expectTold(
            image, Verdict::Unproven,
            {{FindingCode::UnknownSignedRecord, Severity::Unproven, 0x0599, dataType,
              "EF 0599 is no known EF of this application; the card signed it."}});
    }
}

TEST(RulesTest, TellsAnEfThatIsNotKnownAndNotSignedByTheCard)
{
    Image image = driver();
    image.append({0x0599, dataG1, "abc"}).append({0x0599, signatureG1, cardSignature("abd", dataG1)});
    expectTold(
        image, Verdict::Altered,
        {{FindingCode::SignatureInvalid, Severity::Altered, 0x0599, dataG1,
          "EF 0599: the signature does not hold. Data or signature was changed, or they are of two "
          "cards."}});
}

TEST(RulesTest, TellsEfsOfVersion2OnACardOfVersion1)
{
    Image image(smallDownload("driverG2").file);
    image.append({0x0526, dataG2, "abc"});
    expectTold(
        image, Verdict::Unproven,
        {{FindingCode::UnexpectedRecord, Severity::Unproven, 0x0526, dataG2,
          "EF_Places_Authentication is no EF of this application, and is not signed."}});
}

TEST(RulesTest, TellsEfsOfAnotherKindOfCard)
{
    Image image = driver();
    image.append({0x050A, dataG1, "abc"});
    expectTold(
        image, Verdict::Unproven,
        {{FindingCode::UnexpectedRecord, Severity::Unproven, 0x050A, dataG1,
          "EF_Calibration is no EF of this application, and is not signed."}});

    Image company(smallDownload("company").file);
    company.append({0x050C, dataG1, "abc"});
    expectTold(
        company, Verdict::Unproven,
        {{FindingCode::UnexpectedRecord, Severity::Unproven, 0x050C, dataG1,
          "EF_Controller_Activity_Data is no EF of this application, and is not signed."}});
}

TEST(RulesTest, TellsARepeatedEf)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        Image image = driverV2();
        for (const unsigned int type : {dataType, dataType + 1})
            image.append({0x0505, type, image.payload(0x0505, type)});
        expectTold(
            image, Verdict::Unproven,
            {{FindingCode::RepeatedRecord, Severity::Unproven, 0x0505, dataType,
              "EF_Vehicles_Used stands in the file more than once.", 1}});
    }
}

TEST(RulesTest, TellsAWholeApplicationThatIsThereTwice)
{
    Image image = driver();
    const Image again = image;
    for (const Record& record : again.records)
        image.append(record);
    const VerificationReport report = verifyImage(image.bytes(), roots());
    EXPECT_EQ(report.verdict, Verdict::Unproven);
    ASSERT_EQ(report.applications.size(), 1U);
    const auto records = std::count_if(again.records.begin(), again.records.end(), [](const Record& record) {
        return record.type == dataG1;
    });
    EXPECT_EQ(
        codesOf(report),
        std::vector<FindingCode>(static_cast<std::size_t>(records), FindingCode::RepeatedRecord));
}

TEST(RulesTest, VouchesForNothingInARepeatedCertificate)
{
    Image image = driver();
    image.append({0xC100, dataG1, image.payload(0xC100, dataG1)});
    const VerificationReport report = verifyImage(image.bytes(), roots());
    EXPECT_THAT(codesOf(report), ElementsAre(FindingCode::RepeatedRecord));
    EXPECT_EQ(report.uncovered.back().offset, image.offsetOf(0xC100, dataG1, 1));
    EXPECT_EQ(report.uncovered.back().length, 5 + 194);
}

// What nothing vouches for.

TEST(RulesTest, VouchesForNeitherDataNorSignatureThatDoNotFit)
{
    const struct
    {
        unsigned int type;
        Generation generation;
        int signatureLength;
    } rows[] = {{dataG1, Generation::First, 128}, {dataG2, Generation::Second, 64}};
    for (const auto& row : rows) {
        Image image = driverV2();
        QByteArray& places = image.payload(0x0506, row.type);
        places[0] = static_cast<char>(places.at(0) ^ 0x01);
        expectUncovered(
            verifyImage(image.bytes(), allRoots()), 0x0506, row.generation, image.offsetOf(0x0506, row.type),
            headerLength + places.size() + headerLength + row.signatureLength);
    }
}

TEST(RulesTest, NamesWhatNothingVouchesForByEfAndGeneration)
{
    Image image = driverV2();
    const auto end = static_cast<long long>(image.bytes().size());
    image.append({0x0598, dataG1, "a"})
        .append({0x0599, dataG1, "abc"})
        .append({0x0599, dataG2, "abcd"})
        .append({0x0599, dataG2, "abcde"});
    const VerificationReport report = verifyImage(image.bytes(), allRoots());
    const struct
    {
        unsigned int fid;
        Generation generation;
        long long offset;
        long long length;
    } rows[] = {
        {0x0598, Generation::First, end, 6},
        {0x0599, Generation::First, end + 6, 8},
        {0x0599, Generation::Second, end + 14, 9 + 10},
    };
    ASSERT_GT(report.uncovered.size(), std::size(rows));
    auto part = report.uncovered.end() - static_cast<std::ptrdiff_t>(std::size(rows));
    EXPECT_LT((part - 1)->offset + (part - 1)->length, end);
    for (const auto& row : rows) {
        EXPECT_EQ(part->fid, row.fid);
        EXPECT_EQ(part->generation, row.generation);
        EXPECT_EQ(part->offset, row.offset);
        EXPECT_EQ(part->length, row.length);
        ++part;
    }
}

// The chip.

TEST(RulesTest, HasNothingToCompareWithoutTheChip)
{
    Image none = driver();
    none.remove(0x0002, dataG1);
    Image zeros = driver();
    zeros.payload(0x0002, dataG1).fill('\0');
    Image ones = driver();
    ones.payload(0x0002, dataG1).fill('\xFF');
    Image cut = driver();
    cut.payload(0x0002, dataG1).truncate(8);
    Image empty = driver();
    empty.payload(0x0002, dataG1).clear();
    const Expected unknown = {
        FindingCode::SerialNumberUnknown, Severity::Warning, 0x0002, noRecord,
        "EF_ICC does not say the card's serial number; the certificates are of CE 06 8E D5 02 22 01 54."};
    for (const Image& image : {none, zeros, ones, cut, empty})
        expectTold(image, Verdict::Genuine, {unknown});
}

TEST(RulesTest, TellsTheChipOfAnotherCard)
{
    Image first = driver();
    first.payload(0x0002, dataG1)[1] = '\x11';
    expectTold(
        first, Verdict::Altered,
        {{FindingCode::CertificateOfAnotherCard, Severity::Altered, 0x0002, dataG1,
          "The certificates of the first generation are of the card CE 06 8E D5 02 22 01 54, EF_ICC is of "
          "the card 11 06 8E D5 02 22 01 54."}});

    Image second = driverV2();
    second.payload(0x0002, dataG2)[1] = '\x11';
    expectTold(
        second, Verdict::Altered,
        {{FindingCode::CertificateOfAnotherCard, Severity::Altered, 0x0002, dataG2,
          "The certificates of the second generation are of the card CE 06 8E D5 02 22 01 54, EF_ICC is "
          "of the card 11 06 8E D5 02 22 01 54."}});
}

TEST(RulesTest, TakesTheChipOfEitherApplicationForBoth)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        Image image = driverV2();
        image.remove(0x0002, dataType).remove(0x0005, dataType);
        expectTold(image, Verdict::Genuine, {});
        image.payload(0x0002, dataG1 + dataG2 - dataType)[1] = '\x11';
        EXPECT_THAT(
            codesOf(verifyImage(image.bytes(), allRoots())),
            ElementsAre(FindingCode::CertificateOfAnotherCard, FindingCode::CertificateOfAnotherCard));
    }
}

// Other kinds and orders.

TEST(RulesTest, DoesNotAskForAnOrder)
{
    Image image = driverV2();
    Image turned = image;
    turned.records.clear();
    for (std::size_t i = image.records.size(); i-- > 0;) {
        if (image.records[i].type % 2 == 1)
            continue;
        turned.append(image.records[i]);
        if (i + 1 < image.records.size() && image.records[i + 1].type % 2 == 1)
            turned.append(image.records[i + 1]);
    }
    expectTold(turned, Verdict::Genuine, {});
}

TEST(RulesTest, KnowsControlCards)
{
    sim::ControlParametersG2 parameters;
    const sim::CardDescription card = sim::makeControlCardG2(parameters);
    QByteArray file;
    {
        ImageWriter first(1);
        first.chip(card);
        for (const unsigned int fid : {0x0501U, 0xC100U, 0xC108U, 0x050CU})
            first.ef(card.applications.at(0), fid);
        file += arrayOf(first.bytes);
    }
    expectTold(Image(file), Verdict::Genuine, {});

    ImageWriter second(2);
    for (const unsigned int fid : {0x0501U, 0xC100U, 0xC108U, 0xC109U, 0x0520U, 0x050CU})
        second.dataOnly(card.applications.at(1), fid);
    expectTold(
        Image(file + arrayOf(second.bytes)), Verdict::Unproven,
        {{FindingCode::ApplicationNotSigned, Severity::Unproven, 0, noRecord,
          "Cards of this kind have no key to sign their second application with."}});
}

} // namespace

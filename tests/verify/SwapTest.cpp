// Parts of genuine downloads put together: of two cards, of two downloads, of two generations.
#include "Certificates.h"
#include "Image.h"
#include "OtherCard.h"
#include "Told.h"

#include <cli/Downloads.h>
#include <simulator/TestPki.h>
#include <simulator/TestPkiG2.h>
#include <support/FileRecords.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <utility>

namespace {

using namespace scard::verify;
using namespace test;

constexpr unsigned int fidVehicles = 0x0505;

/// The download of the same card a while later: an EF says something else.
Image later(Image image, unsigned int dataType)
{
    QByteArray& vehicles = image.payload(fidVehicles, dataType);
    vehicles[5] = static_cast<char>(vehicles.at(5) + 1);
    return image.sign(fidVehicles, dataType);
}

/// The records of the same EF in @p from, put in place of those in @p to.
Image withPair(Image to, const Image& from, unsigned int dataType)
{
    for (const unsigned int type : {dataType, dataType + 1})
        to.payload(fidVehicles, type) = from.payload(fidVehicles, type);
    return to;
}

TEST(SwapTest, KnowsTheOtherCardAsGenuine)
{
    expectTold(otherCard(driver()), Verdict::Genuine, {});
    expectTold(otherCard(driverV2()), Verdict::Genuine, {});
    expectTold(later(driverV2(), dataG1), Verdict::Genuine, {});
    expectTold(later(driverV2(), dataG2), Verdict::Genuine, {});
}

TEST(SwapTest, TellsTheSignatureOfAnotherCard)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        Image image = driverV2();
        image.payload(fidVehicles, dataType + 1) = otherCard(driverV2()).payload(fidVehicles, dataType + 1);
        expectTold(
            image, Verdict::Altered,
            {{FindingCode::SignatureInvalid, Severity::Altered, 0x0505, dataType,
              "EF_Vehicles_Used: the signature does not hold. Data or signature was changed, or they are "
              "of two cards."}});
    }
}

TEST(SwapTest, TellsTheSignaturesOfTwoEfsThatChangedPlaces)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        Image image = driverV2();
        std::swap(image.payload(0x0502, dataType + 1), image.payload(0x0503, dataType + 1));
        expectTold(
            image, Verdict::Altered,
            {{FindingCode::SignatureInvalid, Severity::Altered, 0x0502, dataType,
              "EF_EventsData: the signature does not hold. Data or signature was changed, or they are of "
              "two cards."},
             {FindingCode::SignatureInvalid, Severity::Altered, 0x0503, dataType,
              "EF_FaultsData: the signature does not hold. Data or signature was changed, or they are of "
              "two cards."}});
    }
}

TEST(SwapTest, TellsDataOfAnotherDownloadOfTheSameCard)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        Image image = driverV2();
        image.payload(fidVehicles, dataType) = later(driverV2(), dataType).payload(fidVehicles, dataType);
        expectTold(
            image, Verdict::Altered,
            {{FindingCode::SignatureInvalid, Severity::Altered, 0x0505, dataType,
              "EF_Vehicles_Used: the signature does not hold. Data or signature was changed, or they are "
              "of two cards."}});
    }
}

TEST(SwapTest, CannotTellDataWithItsSignatureOfAnEarlierDownloadOfTheSameCard)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        const Image image = withPair(later(driverV2(), dataType), driverV2(), dataType);
        expectTold(image, Verdict::Genuine, {});
    }
}

/// Two EFs of @p image with the data and the signature of the other.
Image withSwappedEfs(Image image, unsigned int one, unsigned int other, unsigned int dataType)
{
    for (const unsigned int type : {dataType, dataType + 1})
        std::swap(image.payload(one, type), image.payload(other, type));
    return image;
}

TEST(SwapTest, TellsDataWithItsSignatureUnderTheNameOfAnEfOfAnotherLength)
{
    expectTold(
        withSwappedEfs(driverV2(), 0x0502, 0x0503, dataG1), Verdict::Altered,
        {{FindingCode::RecordTooShort, Severity::Altered, 0x0502, dataG1,
          "EF_EventsData has 48 bytes; on this card it has 144."},
         {FindingCode::RecordTooLong, Severity::Unproven, 0x0503, dataG1,
          "EF_FaultsData has 144 bytes; on this card it has 48."}});
    expectTold(
        withSwappedEfs(driverV2(), 0x0502, 0x0503, dataG2), Verdict::Altered,
        {{FindingCode::RecordTooShort, Severity::Altered, 0x0502, dataG2,
          "EF_EventsData has 48 bytes; on this card it has 264."},
         {FindingCode::RecordTooLong, Severity::Unproven, 0x0503, dataG2,
          "EF_FaultsData has 264 bytes; on this card it has 48."}});
}

TEST(SwapTest, CannotTellDataWithItsSignatureUnderTheNameOfAnEfOfTheSameLength)
{
    // A card with as many places as specific conditions, and as many GNSS places as load types: most are so.
    const auto& downloads = realDownloads();
    const auto card = std::find_if(downloads.begin(), downloads.end(), [](const CardFile& each) {
        return std::string(each.name) == "driver g2v2";
    });
    ASSERT_NE(card, downloads.end());
    const Image image(card->file);
    for (const auto& [one, other] : {std::pair{0x0522U, 0x0526U}, std::pair{0x0527U, 0x0530U}}) {
        const Image swapped = withSwappedEfs(image, one, other, dataG2);
        EXPECT_EQ(swapped.payload(one, dataG2).size(), image.payload(one, dataG2).size());
        EXPECT_NE(swapped.bytes(), image.bytes());
        expectTold(swapped, Verdict::Genuine, {});
    }
}

TEST(SwapTest, TellsDataWithItsSignatureOfAnotherCard)
{
    for (const unsigned int dataType : {dataG1, dataG2})
        expectTold(
            withPair(driverV2(), otherCard(driverV2()), dataType), Verdict::Altered,
            {{FindingCode::SignatureInvalid, Severity::Altered, 0x0505, dataType,
              "EF_Vehicles_Used: the signature does not hold. Data or signature was changed, or they are "
              "of two cards."}});
}

TEST(SwapTest, TellsThatTheApplicationsAreOfTwoCards)
{
    Image image = driverV2();
    const Image other = otherCard(driverV2());
    for (std::size_t i = 0; i < image.records.size(); ++i) {
        if (image.records[i].type >= dataG2 && image.records[i].fid != 0x0002)
            image.records[i] = other.records[i];
    }
    expectTold(
        image, Verdict::Altered,
        {{FindingCode::ApplicationsOfTwoCards, Severity::Altered, 0, noRecord,
          "The first application is of the card CE 06 8E D5 02 22 01 54, the second of the card 01 02 03 04 "
          "05 "
          "24 01 54."},
         {FindingCode::CertificateOfAnotherCard, Severity::Altered, 0x0002, dataG2,
          "The certificates of the second generation are of the card 01 02 03 04 05 24 01 54, EF_ICC is "
          "of the card CE 06 8E D5 02 22 01 54."}});
}

TEST(SwapTest, TellsThatTheApplicationsAreOfTwoCardsEachWithItsChip)
{
    const QByteArray first =
        without(driverV2().bytes(), [](const FileRecord& record) { return record.type >= dataG2; });
    const Image image(first + secondOf(otherCard(driverV2()).bytes()));
    expectTold(
        image, Verdict::Altered,
        {{FindingCode::ApplicationsOfTwoCards, Severity::Altered, 0, noRecord,
          "The first application is of the card CE 06 8E D5 02 22 01 54, the second of the card 01 02 03 04 "
          "05 "
          "24 01 54."}});
}

// Types of records.

TEST(SwapTest, TellsADataRecordOfTheOtherGenerationsType)
{
    Image first = driver();
    for (Record& record : first.records) {
        if (record.fid == fidVehicles && record.type == dataG1)
            record.type = dataG2;
    }
    expectTold(
        first, Verdict::Altered,
        {{FindingCode::SignatureWithoutData, Severity::Altered, 0x0505, signatureG1,
          "A signature of EF_Vehicles_Used stands behind no data of it."},
         {FindingCode::RecordMissing, Severity::Unproven, 0x0505, noRecord,
          "EF_Vehicles_Used is not in the file; every card of this kind has it."},
         {FindingCode::CertificateMissing, Severity::Unproven, 0xC108, noRecord,
          "EF_CA_Certificate is not in the file."},
         {FindingCode::CertificateMissing, Severity::Unproven, 0xC101, noRecord,
          "EF_Card_Sign_Certificate is not in the file."},
         {FindingCode::SignatureMissing, Severity::Unproven, 0x0505, dataG2,
          "EF_Vehicles_Used has no signature."},
         {FindingCode::RecordMissing, Severity::Unproven, 0x0501, noRecord,
          "EF_Application_Identification does not say what kind of card it is."}});

    Image second = driverV2();
    for (Record& record : second.records) {
        if (record.fid == fidVehicles && record.type == dataG2)
            record.type = dataG1;
    }
    expectTold(
        second, Verdict::Altered,
        {{FindingCode::SignatureMissing, Severity::Unproven, 0x0505, dataG1,
          "EF_Vehicles_Used has no signature.", 1},
         {FindingCode::RepeatedRecord, Severity::Unproven, 0x0505, dataG1,
          "EF_Vehicles_Used stands in the file more than once.", 1},
         {FindingCode::RecordTooLong, Severity::Unproven, 0x0505, dataG1,
          "EF_Vehicles_Used has 98 bytes; on this card it has 64.", 1},
         {FindingCode::SignatureWithoutData, Severity::Altered, 0x0505, signatureG2,
          "A signature of EF_Vehicles_Used stands behind no data of it."},
         {FindingCode::RecordMissing, Severity::Unproven, 0x0505, noRecord,
          "EF_Vehicles_Used is not in the file; every card of this kind has it."}});
}

TEST(SwapTest, TellsASignatureOfTheOtherGenerationsType)
{
    Image first = driver();
    for (Record& record : first.records) {
        if (record.fid == fidVehicles && record.type == signatureG1)
            record.type = signatureG2;
    }
    expectTold(
        first, Verdict::Altered,
        {{FindingCode::SignatureMissing, Severity::Unproven, 0x0505, dataG1,
          "EF_Vehicles_Used has no signature."},
         {FindingCode::CertificateMissing, Severity::Unproven, 0xC108, noRecord,
          "EF_CA_Certificate is not in the file."},
         {FindingCode::CertificateMissing, Severity::Unproven, 0xC101, noRecord,
          "EF_Card_Sign_Certificate is not in the file."},
         {FindingCode::SignatureWithoutData, Severity::Altered, 0x0505, signatureG2,
          "A signature of EF_Vehicles_Used stands behind no data of it."},
         {FindingCode::RecordMissing, Severity::Unproven, 0x0501, noRecord,
          "EF_Application_Identification does not say what kind of card it is."}});

    Image second = secondAlone();
    for (Record& record : second.records) {
        if (record.fid == fidVehicles && record.type == signatureG2)
            record.type = signatureG1;
    }
    expectTold(
        second, Verdict::Altered,
        {{FindingCode::CertificateMissing, Severity::Unproven, 0xC108, noRecord,
          "EF_CA_Certificate is not in the file."},
         {FindingCode::CertificateMissing, Severity::Unproven, 0xC100, noRecord,
          "EF_Card_Certificate is not in the file."},
         {FindingCode::SignatureWithoutData, Severity::Altered, 0x0505, signatureG1,
          "A signature of EF_Vehicles_Used stands behind no data of it."},
         {FindingCode::RecordMissing, Severity::Unproven, 0x0501, noRecord,
          "EF_Application_Identification does not say what kind of card it is."},
         {FindingCode::SignatureMissing, Severity::Unproven, 0x0505, dataG2,
          "EF_Vehicles_Used has no signature."}});
}

TEST(SwapTest, TellsAnEfOfTheOtherGenerationsTypes)
{
    Image image = driverV2();
    for (Record& record : image.records) {
        if (record.fid == fidVehicles)
            record.type = record.type < dataG2 ? record.type + 2 : record.type - 2;
    }
    expectTold(
        image, Verdict::Altered,
        {{FindingCode::SignatureLength, Severity::Altered, 0x0505, dataG1,
          "EF_Vehicles_Used has a signature of 64 bytes, one of RSA-1024 has 128."},
         {FindingCode::SignatureLength, Severity::Altered, 0x0505, dataG2,
          "EF_Vehicles_Used has a signature of 128 bytes, one of NIST P-256 has 64."}});
}

TEST(SwapTest, TellsAFirstApplicationWithTheTypesOfTheSecond)
{
    Image image = driver();
    for (Record& record : image.records)
        record.type += 2;
    expectTold(
        image, Verdict::Altered,
        {{FindingCode::CertificateOfGeneration, Severity::Altered, 0xC108, dataG2,
          "EF_CA_Certificate holds a certificate of the first generation among records of the second."},
         {FindingCode::CertificateOfGeneration, Severity::Altered, 0xC100, dataG2,
          "EF_MA_Certificate holds a certificate of the first generation among records of the second."},
         {FindingCode::CertificateMissing, Severity::Unproven, 0xC101, noRecord,
          "EF_Card_Sign_Certificate is not in the file."},
         {FindingCode::RecordTooShort, Severity::Altered, 0x0501, dataG2,
          "EF_Application_Identification has 10 bytes; on this card it has 17."},
         {FindingCode::RecordMissing, Severity::Unproven, 0x0523, noRecord,
          "EF_Vehicle_Units_Used is not in the file; every card of this kind has it."},
         {FindingCode::RecordMissing, Severity::Unproven, 0x0524, noRecord,
          "EF_GNSS_Places is not in the file; every card of this kind has it."}});
}

TEST(SwapTest, TellsASecondApplicationWithTheTypesOfTheFirst)
{
    Image image = secondAlone();
    for (Record& record : image.records)
        record.type -= 2;
    expectTold(
        image, Verdict::Altered,
        {{FindingCode::CertificateOfGeneration, Severity::Altered, 0xC108, dataG1,
          "EF_CA_Certificate holds a certificate of the second generation among records of the first."},
         {FindingCode::CertificateOfGeneration, Severity::Altered, 0xC100, dataG1,
          "EF_Card_Certificate holds a certificate of the second generation among records of the first."},
         {FindingCode::UnexpectedRecord, Severity::Unproven, 0xC101, dataG1,
          "EF_Card_Sign_Certificate is no EF of this application, and is not signed."},
         {FindingCode::UnexpectedRecord, Severity::Unproven, 0xC109, dataG1,
          "EF_Link_Certificate is no EF of this application, and is not signed."},
         {FindingCode::RecordTooLong, Severity::Unproven, 0x0501, dataG1,
          "EF_Application_Identification has 17 bytes; on this card it has 10."}});
}

// Certificates.

TEST(SwapTest, TellsFirstGenerationCertificatesOfCardAndMemberStateThatChangedPlaces)
{
    // What stands in it cannot be read without the key of its issuer, but a Member State is no root.
    Image image = driver();
    std::swap(image.payload(0xC100, dataG1), image.payload(0xC108, dataG1));
    expectTold(
        image, Verdict::Altered,
        {{FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC108, dataG1,
          "EF_CA_Certificate was not issued by a root, but by 0D 44 20 20 01 54 4B 01."}});
}

TEST(SwapTest, TellsCertificatesOfCardAndMemberStateThatChangedPlaces)
{
    Image image = secondAlone();
    std::swap(image.payload(0xC100, dataG2), image.payload(0xC108, dataG2));
    expectTold(
        image, Verdict::Altered,
        {{FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC108, dataG2,
          "EF_CA_Certificate holds a certificate for the mutual authentication of a driver card, not for a "
          "Member State."},
         {FindingCode::RootKeyUnknown, Severity::RootUnknown, 0, noRecord,
          "The root key 0D 44 20 20 30 54 4B 01 of the second generation was not given."},
         {FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC100, dataG2,
          "EF_MA_Certificate holds a certificate for a Member State, not for the mutual authentication of a "
          "driver card."},
         {FindingCode::CertificateOfAnotherIssuer, Severity::Altered, 0xC100, dataG2,
          "EF_MA_Certificate was issued by FD 45 43 20 20 54 4B 01, EF_CA_Certificate is that of CE 06 8E D5 "
          "02 22 01 54."},
         {FindingCode::CertificateOfAnotherCard, Severity::Altered, 0xC101, dataG2,
          "EF_Card_Sign_Certificate is of the card CE 06 8E D5 02 22 01 54, EF_MA_Certificate is of the card "
          "0D 44 20 20 30 54 4B 01."},
         {FindingCode::CertificateOfAnotherIssuer, Severity::Altered, 0xC101, dataG2,
          "EF_Card_Sign_Certificate was issued by 0D 44 20 20 30 54 4B 01, EF_CA_Certificate is that of CE "
          "06 "
          "8E D5 02 22 01 54."}});
}

TEST(SwapTest, TellsTheCertificatesOfTheCardThatChangedPlaces)
{
    Image image = secondAlone();
    std::swap(image.payload(0xC100, dataG2), image.payload(0xC101, dataG2));
    expectTold(
        image, Verdict::Altered,
        std::vector<Expected>{
            {FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC100, dataG2,
             "EF_MA_Certificate holds a certificate for the signatures of a driver card, not for the mutual "
             "authentication of a driver card."},
            {FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC101, dataG2,
             "EF_Card_Sign_Certificate holds a certificate for the mutual authentication of a driver card, "
             "not for the signatures of a driver card."}} +
            invalidSignatures(image, dataG2));
}

TEST(SwapTest, TellsTheCertificateForSignaturesWhereThatOfTheMemberStateBelongs)
{
    Image image = secondAlone();
    std::swap(image.payload(0xC101, dataG2), image.payload(0xC108, dataG2));
    expectTold(
        image, Verdict::Altered,
        std::vector<Expected>{
            {FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC108, dataG2,
             "EF_CA_Certificate holds a certificate for the signatures of a driver card, not for a Member "
             "State."},
            {FindingCode::RootKeyUnknown, Severity::RootUnknown, 0, noRecord,
             "The root key 0D 44 20 20 30 54 4B 01 of the second generation was not given."},
            {FindingCode::CertificateOfAnotherIssuer, Severity::Altered, 0xC100, dataG2,
             "EF_MA_Certificate was issued by 0D 44 20 20 30 54 4B 01, EF_CA_Certificate is that of CE 06 8E "
             "D5 02 22 01 54."},
            {FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC101, dataG2,
             "EF_Card_Sign_Certificate holds a certificate for a Member State, not for the signatures of a "
             "driver card."},
            {FindingCode::CertificateOfAnotherCard, Severity::Altered, 0xC101, dataG2,
             "EF_Card_Sign_Certificate is of the card 0D 44 20 20 30 54 4B 01, EF_MA_Certificate is of the "
             "card CE 06 8E D5 02 22 01 54."},
            {FindingCode::CertificateOfAnotherIssuer, Severity::Altered, 0xC101, dataG2,
             "EF_Card_Sign_Certificate was issued by FD 45 43 20 20 54 4B 01, EF_CA_Certificate is that of "
             "CE 06 8E D5 02 22 01 54."},
            {FindingCode::CertificateOfAnotherCard, Severity::Altered, 0x0002, dataG2,
             "The certificates of the second generation are of the card 0D 44 20 20 30 54 4B 01, EF_ICC is "
             "of the card CE 06 8E D5 02 22 01 54."}} +
            invalidSignatures(image, dataG2));
}

TEST(SwapTest, TellsTheCertificateOfAnotherMemberState)
{
    constexpr std::uint8_t finland = 0x12;
    Image first = driver();
    first.payload(0xC108, dataG1) = arrayOf(sim::caCertificateG1(finland));
    // All nations share a key here, so that the certificate opens; its name gives it away.
    expectTold(
        first, Verdict::Altered,
        {{FindingCode::CertificateOfAnotherIssuer, Severity::Altered, 0xC100, dataG1,
          "EF_Card_Certificate was issued by 0D 44 20 20 01 54 4B 01, EF_CA_Certificate is that of 12 46 49 "
          "4E "
          "01 54 4B 01."}});

    Image second = secondAlone();
    second.payload(0xC108, dataG2) = arrayOf(sim::caCertificateG2(sim::Curve::NistP256, finland, 2021));
    expectTold(
        second, Verdict::Altered,
        {{FindingCode::CertificateOfAnotherIssuer, Severity::Altered, 0xC100, dataG2,
          "EF_MA_Certificate was issued by 0D 44 20 20 30 54 4B 01, EF_CA_Certificate is that of 12 46 49 "
          "4E 30 54 4B 01."},
         {FindingCode::CertificateOfAnotherIssuer, Severity::Altered, 0xC101, dataG2,
          "EF_Card_Sign_Certificate was issued by 0D 44 20 20 30 54 4B 01, EF_CA_Certificate is that of "
          "12 46 49 4E 30 54 4B 01."}});
}

TEST(SwapTest, TellsTheCertificateOfAnotherMemberStateWithAKeyOfItsOwn)
{
    const QByteArray finland = arrayOf(sim::memberStateIdG1(0x12));
    Image first = driver();
    QByteArray content = contentG1(first.payload(0xC108, dataG1), sim::rootPrivateKeyG1());
    content = with(content, placesG1::holder, finland);
    content = with(content, placesG1::modulus, arrayOf(otherRsaKey().modulus()));
    first.payload(0xC108, dataG1) = certificateG1(content, sim::rootPrivateKeyG1());
    expectTold(
        first, Verdict::Altered,
        {{FindingCode::CertificateOfAnotherIssuer, Severity::Altered, 0xC100, dataG1,
          "EF_Card_Certificate was issued by 0D 44 20 20 01 54 4B 01, EF_CA_Certificate is that of 12 46 "
          "49 4E 01 54 4B 01."}});
}

TEST(SwapTest, TellsTheCertificateOfAnotherCardOfTheSameMemberState)
{
    Image first = driver();
    first.payload(0xC100, dataG1) = otherCard(driver()).payload(0xC100, dataG1);
    const Expected firstChip = {
        FindingCode::CertificateOfAnotherCard, Severity::Altered, 0x0002, dataG1,
        "The certificates of the first generation are of the card 01 02 03 04 05 24 01 54, EF_ICC is of the "
        "card CE 06 8E D5 02 22 01 54."};
    expectTold(first, Verdict::Altered, std::vector<Expected>{firstChip} + invalidSignatures(first, dataG1));

    Image authentication = secondAlone();
    authentication.payload(0xC100, dataG2) = otherCard(secondAlone()).payload(0xC100, dataG2);
    expectTold(
        authentication, Verdict::Altered,
        {{FindingCode::CertificateOfAnotherCard, Severity::Altered, 0xC101, dataG2,
          "EF_Card_Sign_Certificate is of the card CE 06 8E D5 02 22 01 54, EF_MA_Certificate is of the card "
          "01 02 03 04 05 24 01 54."}});

    Image signing = secondAlone();
    signing.payload(0xC101, dataG2) = otherCard(secondAlone()).payload(0xC101, dataG2);
    const Expected other = {
        FindingCode::CertificateOfAnotherCard, Severity::Altered, 0xC101, dataG2,
        "EF_Card_Sign_Certificate is of the card 01 02 03 04 05 24 01 54, EF_MA_Certificate is of the card "
        "CE 06 8E D5 02 22 01 54."};
    const Expected chip = {
        FindingCode::CertificateOfAnotherCard, Severity::Altered, 0x0002, dataG2,
        "The certificates of the second generation are of the card 01 02 03 04 05 24 01 54, EF_ICC is of the "
        "card CE 06 8E D5 02 22 01 54."};
    expectTold(
        signing, Verdict::Altered, std::vector<Expected>{other, chip} + invalidSignatures(signing, dataG2));
}

TEST(SwapTest, TellsCertificatesOfTheOtherGeneration)
{
    Image first = driverV2();
    Image second = driverV2();
    for (const unsigned int fid : {0xC100U, 0xC108U}) {
        second.payload(fid, dataG2) = first.payload(fid, dataG1);
        first.payload(fid, dataG1) = driverV2().payload(fid, dataG2);
    }
    second.payload(0xC101, dataG2) = second.payload(0xC100, dataG1);
    second.payload(0xC109, dataG2) = second.payload(0xC108, dataG1);
    expectTold(
        first, Verdict::Altered,
        {{FindingCode::CertificateOfGeneration, Severity::Altered, 0xC108, dataG1,
          "EF_CA_Certificate holds a certificate of the second generation among records of the first."},
         {FindingCode::CertificateOfGeneration, Severity::Altered, 0xC100, dataG1,
          "EF_Card_Certificate holds a certificate of the second generation among records of the "
          "first."}});
    expectTold(
        second, Verdict::Altered,
        {{FindingCode::CertificateOfGeneration, Severity::Altered, 0xC108, dataG2,
          "EF_CA_Certificate holds a certificate of the first generation among records of the second."},
         {FindingCode::CertificateOfGeneration, Severity::Altered, 0xC100, dataG2,
          "EF_MA_Certificate holds a certificate of the first generation among records of the second."},
         {FindingCode::CertificateOfGeneration, Severity::Altered, 0xC101, dataG2,
          "EF_Card_Sign_Certificate holds a certificate of the first generation among records of the "
          "second."},
         {FindingCode::CertificateOfGeneration, Severity::Altered, 0xC109, dataG2,
          "EF_Link_Certificate holds a certificate of the first generation among records of the "
          "second."}});
}

} // namespace

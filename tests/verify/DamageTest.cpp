// Downloads in which something is missing, too short, too long, twice or nothing at all.
#include "Image.h"
#include "Roots.h"
#include "Told.h"

#include <cli/Downloads.h>
#include <scard/ElementaryFile.h>
#include <scardverify/VerifyImage.h>
#include <support/FileRecords.h>

#include <gmock/gmock.h>

namespace {

using namespace scard::verify;
using namespace test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr unsigned int fidPlaces = 0x0506;

// Signatures.

TEST(DamageTest, TellsASignatureOfAWrongLength)
{
    const struct
    {
        unsigned int type;
        int length;
        const char* text;
    } rows[] = {
        {dataG1, 127, "EF_Places has a signature of 127 bytes, one of RSA-1024 has 128."},
        {dataG1, 129, "EF_Places has a signature of 129 bytes, one of RSA-1024 has 128."},
        {dataG1, 1, "EF_Places has a signature of 1 bytes, one of RSA-1024 has 128."},
        {dataG2, 63, "EF_Places has a signature of 63 bytes, one of NIST P-256 has 64."},
        {dataG2, 65, "EF_Places has a signature of 65 bytes, one of NIST P-256 has 64."},
        {dataG2, 1, "EF_Places has a signature of 1 bytes, one of NIST P-256 has 64."},
    };
    for (const auto& row : rows) {
        Image image = driverV2();
        QByteArray& signature = image.payload(fidPlaces, row.type + 1);
        signature = (signature + '\0').left(row.length);
        expectTold(
            image, Verdict::Altered,
            {{FindingCode::SignatureLength, Severity::Altered, fidPlaces, row.type, row.text}});
    }
}

TEST(DamageTest, MissesASignatureThatIsNotThere)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        Image image = driverV2();
        image.remove(fidPlaces, dataType + 1);
        expectTold(
            image, Verdict::Unproven,
            {{FindingCode::SignatureMissing, Severity::Unproven, 0x0506, dataType,
              "EF_Places has no signature."}});
    }
}

TEST(DamageTest, MissesASignatureWithoutBytes)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        Image image = driverV2();
        image.payload(fidPlaces, dataType + 1).clear();
        expectTold(
            image, Verdict::Unproven,
            {{FindingCode::SignatureMissing, Severity::Unproven, 0x0506, dataType,
              "EF_Places has no signature."}});
    }
}

TEST(DamageTest, TellsASignatureOfNothing)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        Image image = driverV2();
        image.remove(fidPlaces, dataType);
        expectTold(
            image, Verdict::Altered,
            {{FindingCode::SignatureWithoutData, Severity::Altered, 0x0506, dataType + 1,
              "A signature of EF_Places stands behind no data of it."},
             {FindingCode::RecordMissing, Severity::Unproven, 0x0506, noRecord,
              "EF_Places is not in the file; every card of this kind has it."}});
    }
}

TEST(DamageTest, TellsASecondSignatureOfTheSameData)
{
    for (const unsigned int dataType : {dataG1, dataG2}) {
        Image image = driverV2();
        const Record again{fidPlaces, dataType + 1, image.payload(fidPlaces, dataType + 1)};
        image.insertBehind(fidPlaces, dataType + 1, again);
        expectTold(
            image, Verdict::Altered,
            {{FindingCode::SignatureWithoutData, Severity::Altered, 0x0506, dataType + 1,
              "A signature of EF_Places stands behind no data of it.", 1}});
    }
}

TEST(DamageTest, TellsASignatureThatStandsBehindAnotherRecord)
{
    Image image = driver();
    const Record moved{fidPlaces, signatureG1, image.payload(fidPlaces, signatureG1)};
    image.remove(fidPlaces, signatureG1).append(moved);
    expectTold(
        image, Verdict::Altered,
        {{FindingCode::SignatureMissing, Severity::Unproven, 0x0506, dataG1, "EF_Places has no signature."},
         {FindingCode::SignatureWithoutData, Severity::Altered, 0x0506, signatureG1,
          "A signature of EF_Places stands behind no data of it."}});
}

// Certificates.

TEST(DamageTest, MissesACertificate)
{
    struct Row
    {
        unsigned int fid;
        unsigned int type;
        std::vector<Expected> told;
    };
    const Row rows[] = {
        {0xC100,
         dataG1,
         {{FindingCode::CertificateMissing, Severity::Unproven, 0xC100, noRecord,
           "EF_Card_Certificate is not in the file."}}},
        {0xC108,
         dataG1,
         {{FindingCode::CertificateMissing, Severity::Unproven, 0xC108, noRecord,
           "EF_CA_Certificate is not in the file."}}},
        {0xC101,
         dataG2,
         {{FindingCode::CertificateMissing, Severity::Unproven, 0xC101, noRecord,
           "EF_Card_Sign_Certificate is not in the file."}}},
        {0xC108,
         dataG2,
         {{FindingCode::CertificateMissing, Severity::Unproven, 0xC108, noRecord,
           "EF_CA_Certificate is not in the file."}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fid);
        Image image = driverV2();
        expectTold(image.remove(row.fid, row.type), Verdict::Unproven, row.told);
    }
}

TEST(DamageTest, MissesACertificateInABlankEf)
{
    struct Row
    {
        unsigned int fid;
        unsigned int type;
        char filling;
        std::vector<Expected> told;
    };
    const Row rows[] = {
        {0xC100,
         dataG1,
         '\0',
         {{FindingCode::CertificateMissing, Severity::Unproven, 0xC100, dataG1,
           "EF_Card_Certificate holds no certificate."}}},
        {0xC108,
         dataG1,
         '\xFF',
         {{FindingCode::CertificateMissing, Severity::Unproven, 0xC108, dataG1,
           "EF_CA_Certificate holds no certificate."}}},
        {0xC101,
         dataG2,
         '\xFF',
         {{FindingCode::CertificateMissing, Severity::Unproven, 0xC101, dataG2,
           "EF_Card_Sign_Certificate holds no certificate."}}},
        {0xC108,
         dataG2,
         '\0',
         {{FindingCode::CertificateMissing, Severity::Unproven, 0xC108, dataG2,
           "EF_CA_Certificate holds no certificate."}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fid);
        Image image = driverV2();
        image.payload(row.fid, row.type).fill(row.filling);
        expectTold(image, Verdict::Unproven, row.told);
    }
}

TEST(DamageTest, DoesNotMissTheCertificateForMutualAuthentication)
{
    Image none = driverV2();
    none.remove(0xC100, dataG2);
    Image blank = driverV2();
    blank.payload(0xC100, dataG2).fill('\0');
    for (const Image& image : {none, blank}) {
        expectTold(image, Verdict::Genuine, {});
        const VerificationReport report = verifyImage(image.bytes(), allRoots());
        for (const CertificateReport& each : report.applications.at(1).chain)
            EXPECT_NE(each.role, CertificateRole::Card);
    }
}

TEST(DamageTest, MissesACertificateInAnEmptyEf)
{
    Image image = driver();
    image.payload(0xC100, dataG1).clear();
    expectTold(
        image, Verdict::Unproven,
        {{FindingCode::CertificateMissing, Severity::Unproven, 0xC100, dataG1,
          "EF_Card_Certificate holds no certificate."}});
}

TEST(DamageTest, TellsWhatIsNoCertificate)
{
    struct Row
    {
        unsigned int fid;
        unsigned int type;
        Verdict verdict;
        std::vector<Expected> told;
    };
    const Row rows[] = {
        {0xC100,
         dataG1,
         Verdict::Altered,
         {{FindingCode::CertificateOfAnotherIssuer, Severity::Altered, 0xC100, dataG1,
           "EF_Card_Certificate was issued by 5A 5A 5A 5A 5A 5A 5A 5A, EF_CA_Certificate is that of 0D 44 "
           "20 20 01 54 4B 01."}}},
        {0xC108,
         dataG1,
         Verdict::Altered,
         {{FindingCode::CertificateForAnotherUse, Severity::Altered, 0xC108, dataG1,
           "EF_CA_Certificate was not issued by a root, but by 5A 5A 5A 5A 5A 5A 5A 5A."}}},
        {0xC100,
         dataG2,
         Verdict::Altered,
         {{FindingCode::CertificateUnreadable, Severity::Altered, 0xC100, dataG2,
           "EF_MA_Certificate holds nothing that can be read as a certificate."}}},
        {0xC101,
         dataG2,
         Verdict::Altered,
         {{FindingCode::CertificateUnreadable, Severity::Altered, 0xC101, dataG2,
           "EF_Card_Sign_Certificate holds nothing that can be read as a certificate."}}},
        {0xC108,
         dataG2,
         Verdict::Altered,
         {{FindingCode::CertificateUnreadable, Severity::Altered, 0xC108, dataG2,
           "EF_CA_Certificate holds nothing that can be read as a certificate."}}},
        {0xC109,
         dataG2,
         Verdict::Altered,
         {{FindingCode::CertificateUnreadable, Severity::Altered, 0xC109, dataG2,
           "EF_Link_Certificate holds nothing that can be read as a certificate."}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fid);
        Image image = driverV2();
        image.payload(row.fid, row.type).fill('\x5A');
        expectTold(image, row.verdict, row.told);
    }
}

TEST(DamageTest, TellsACertificateThatIsCut)
{
    Image first = driverV2();
    first.payload(0xC100, dataG1).chop(1);
    expectTold(
        first, Verdict::Altered,
        {{FindingCode::CertificateUnreadable, Severity::Altered, 0xC100, dataG1,
          "EF_Card_Certificate is too short for a certificate, which has 194 bytes."}});
    Image second = driverV2();
    second.payload(0xC100, dataG2).chop(1);
    expectTold(
        second, Verdict::Altered,
        {{FindingCode::CertificateUnreadable, Severity::Altered, 0xC100, dataG2,
          "EF_MA_Certificate holds nothing that can be read as a certificate."}});
}

TEST(DamageTest, TellsACertificateWhoseLastByteIsAnother)
{
    struct Row
    {
        unsigned int fid;
        unsigned int type;
        std::vector<Expected> told;
    };
    const Row rows[] = {
        {0xC100,
         dataG1,
         {{FindingCode::CertificateInvalid, Severity::Altered, 0xC100, dataG1,
           "EF_Card_Certificate names another issuer at its end than the one that signed it."}}},
        {0xC108,
         dataG1,
         {{FindingCode::CertificateInvalid, Severity::Altered, 0xC108, dataG1,
           "EF_CA_Certificate names another issuer at its end than the one that signed it."}}},
        {0xC100,
         dataG2,
         {{FindingCode::CertificateInvalid, Severity::Altered, 0xC100, dataG2,
           "EF_MA_Certificate was changed, or was not signed with the key in EF_CA_Certificate."}}},
        {0xC101,
         dataG2,
         {{FindingCode::CertificateInvalid, Severity::Altered, 0xC101, dataG2,
           "EF_Card_Sign_Certificate was changed, or was not signed with the key in EF_CA_Certificate."}}},
        {0xC108,
         dataG2,
         {{FindingCode::CertificateInvalid, Severity::Altered, 0xC108, dataG2,
           "EF_CA_Certificate was changed, or was not signed with the root key that it names."}}},
        {0xC109,
         dataG2,
         {{FindingCode::CertificateInvalid, Severity::Altered, 0xC109, dataG2,
           "EF_Link_Certificate was changed, or was not signed with the root key that it names."}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fid);
        Image image = driverV2();
        QByteArray& certificate = image.payload(row.fid, row.type);
        certificate.back() = static_cast<char>(certificate.back() ^ 0x01);
        expectTold(image, Verdict::Altered, row.told);
    }
}

TEST(DamageTest, NotesPaddedCertificates)
{
    Image image = driverV2();
    for (const unsigned int fid : {0xC100U, 0xC108U})
        image.payload(fid, dataG1) += QByteArray(10, '\0');
    for (const unsigned int fid : {0xC100U, 0xC101U, 0xC108U, 0xC109U})
        image.payload(fid, dataG2) += QByteArray(137, '\xFF');
    expectTold(
        image, Verdict::Genuine,
        {{FindingCode::CertificatePadded, Severity::Note, 0xC108, dataG1,
          "EF_CA_Certificate holds 10 bytes behind its certificate, which nothing vouches for."},
         {FindingCode::CertificatePadded, Severity::Note, 0xC100, dataG1,
          "EF_Card_Certificate holds 10 bytes behind its certificate, which nothing vouches for."},
         {FindingCode::CertificatePadded, Severity::Note, 0xC109, dataG2,
          "EF_Link_Certificate holds 137 bytes behind its certificate, which nothing vouches for."},
         {FindingCode::CertificatePadded, Severity::Note, 0xC108, dataG2,
          "EF_CA_Certificate holds 137 bytes behind its certificate, which nothing vouches for."},
         {FindingCode::CertificatePadded, Severity::Note, 0xC100, dataG2,
          "EF_MA_Certificate holds 137 bytes behind its certificate, which nothing vouches for."},
         {FindingCode::CertificatePadded, Severity::Note, 0xC101, dataG2,
          "EF_Card_Sign_Certificate holds 137 bytes behind its certificate, which nothing vouches for."}});
}

TEST(DamageTest, MissesAllCertificatesOfADownloadWithoutThem)
{
    const QByteArray file = without(
        smallDownload("driverV2").file, [](const FileRecord& record) { return record.fid >= 0xC100; });
    expectTold(
        Image(file), Verdict::Unproven,
        {{FindingCode::CertificateMissing, Severity::Unproven, 0xC108, noRecord,
          "EF_CA_Certificate is not in the file."},
         {FindingCode::CertificateMissing, Severity::Unproven, 0xC100, noRecord,
          "EF_Card_Certificate is not in the file."},
         {FindingCode::CertificateMissing, Severity::Unproven, 0xC108, noRecord,
          "EF_CA_Certificate is not in the file."},
         {FindingCode::CertificateMissing, Severity::Unproven, 0xC101, noRecord,
          "EF_Card_Sign_Certificate is not in the file."}});
    const VerificationReport report = verifyImage(file, allRoots());
    for (const ApplicationReport& application : report.applications) {
        EXPECT_EQ(application.count(SignatureVerdict::NoCertificate), application.signedRecords());
        EXPECT_FALSE(application.signaturesHold());
    }
}

// The file.

TEST(DamageTest, FindsNothingInAnEmptyFile)
{
    for (int size = 0; size < 5; ++size) {
        SCOPED_TRACE(size);
        const VerificationReport report = verifyImage(QByteArray(size, '\0'), allRoots());
        EXPECT_EQ(report.verdict, Verdict::Unproven);
        EXPECT_THAT(report.applications, IsEmpty());
        std::vector<Told> told = {
            {FindingCode::NoApplication, Severity::Unproven, 0, -1,
             "The file has no record of a card's application."}};
        if (size > 0)
            told.push_back(
                {FindingCode::FileCut, Severity::Unproven, 0, 0,
                 "Behind the last record stand " + std::to_string(size) +
                     " of the 5 bytes that another begins with."});
        EXPECT_EQ(toldOf(report), told);
        EXPECT_EQ(report.uncovered.size(), size > 0 ? 1U : 0U);
    }
}

TEST(DamageTest, TellsAFileThatIsCut)
{
    const QByteArray file = smallDownload("driverV2").file;
    const int second = recordOf(file, 0x0002, dataG2).offset;
    for (const FileRecord& record : recordsOf(file)) {
        SCOPED_TRACE(testing::Message() << record.fid << " of type " << record.type);
        const int last = record.end() - 1;
        const VerificationReport inside = verifyImage(file.left(last), allRoots());
        EXPECT_EQ(inside.verdict, Verdict::Unproven);
        const QString name = scard::efName(static_cast<unsigned short>(record.fid), record.type >= dataG2);
        const std::string text = "The file ends inside a record of " + name.toStdString() + ": " +
                                 std::to_string(record.length - 1) + " of " + std::to_string(record.length) +
                                 " bytes are there.";
        EXPECT_THAT(
            toldOf(inside),
            Contains(Told{FindingCode::FileCut, Severity::Unproven, record.fid, record.offset, text}));

        if (record.end() == file.size())
            continue;
        const VerificationReport between = verifyImage(file.left(record.end()), allRoots());
        // The first application is a whole download of an older card, too.
        EXPECT_EQ(between.verdict, record.end() == second ? Verdict::Genuine : Verdict::Unproven);
        EXPECT_THAT(codesOf(between), testing::Not(Contains(FindingCode::FileCut)));

        const VerificationReport behind = verifyImage(file.left(record.end() + 1), allRoots());
        EXPECT_EQ(behind.verdict, Verdict::Unproven);
        EXPECT_THAT(
            toldOf(behind), Contains(Told{
                                FindingCode::FileCut, Severity::Unproven, 0, record.end(),
                                "Behind the last record stand 1 of the 5 bytes that another begins with."}));
    }
}

TEST(DamageTest, CannotTellThatAWholeApplicationIsMissing)
{
    const QByteArray first =
        without(driverV2().bytes(), [](const FileRecord& record) { return record.type >= dataG2; });
    expectTold(Image(first), Verdict::Genuine, {});
    expectTold(secondAlone(), Verdict::Genuine, {});
}

TEST(DamageTest, CountsTheChipToTheSecondApplicationWhereThatIsAlone)
{
    // Its EFs lie outside both applications: some programs write them with the first generation's type.
    Image image = secondAlone();
    for (Record& record : image.records) {
        if (record.fid == 0x0002 || record.fid == 0x0005)
            record.type = dataG1;
    }
    expectTold(image, Verdict::Genuine, {});
    const VerificationReport report = verifyImage(image.bytes(), allRoots());
    ASSERT_EQ(report.applications.size(), 1U);
    const ApplicationReport& application = report.applications.front();
    EXPECT_EQ(application.generation, Generation::Second);
    EXPECT_EQ(application.verdict, Verdict::Genuine);
    ASSERT_GE(application.records.size(), 2U);
    EXPECT_EQ(application.records[0].fid, 0x0002);
    EXPECT_EQ(application.records[0].offset, 0);
    EXPECT_EQ(application.records[1].fid, 0x0005);
    for (const UncoveredPart& each : report.uncovered)
        EXPECT_EQ(each.generation, Generation::Second);

    image.payload(0x0002, dataG1)[1] = '\x11';
    expectTold(
        image, Verdict::Altered,
        {{FindingCode::CertificateOfAnotherCard, Severity::Altered, 0x0002, dataG1,
          "The certificates of the second generation are of the card CE 06 8E D5 02 22 01 54, EF_ICC is "
          "of the card 11 06 8E D5 02 22 01 54."}});
}

TEST(DamageTest, TellsBytesBehindTheLastRecord)
{
    const QByteArray file = smallDownload("driver").file;
    const VerificationReport report = verifyImage(file + "abc", roots());
    EXPECT_EQ(report.verdict, Verdict::Unproven);
    EXPECT_THAT(
        toldOf(report), ElementsAre(Told{
                            FindingCode::FileCut, Severity::Unproven, 0, file.size(),
                            "Behind the last record stand 3 of the 5 bytes that another begins with."}));
    const UncoveredPart& last = report.uncovered.back();
    EXPECT_EQ(last.offset, file.size());
    EXPECT_EQ(last.length, 3);
}

TEST(DamageTest, TellsARecordOfNoKnownType)
{
    for (const unsigned int type : {0x04U, 0x80U, 0xFFU}) {
        SCOPED_TRACE(type);
        Image image = driver();
        const QByteArray file = image.bytes();
        image.append({0x0505, type, "abc"});
        const VerificationReport report = verifyImage(image.bytes(), roots());
        EXPECT_EQ(report.verdict, Verdict::Unproven);
        const std::string name = type == 0x04 ? "04" : type == 0x80 ? "80" : "FF";
        EXPECT_THAT(
            toldOf(report),
            ElementsAre(Told{
                FindingCode::UnknownRecordType, Severity::Unproven, 0x0505, file.size(),
                "A record of EF_Vehicles_Used has the type " + name + ", which stands for nothing."}));
        EXPECT_EQ(report.applications.front().verdict, Verdict::Genuine);
        EXPECT_EQ(report.uncovered.back().offset, file.size());
        EXPECT_EQ(report.uncovered.back().length, 5 + 3);
    }
}

TEST(DamageTest, DoesNotTakeASignatureBehindARecordOfNoKnownType)
{
    Image image = driver();
    image.insertBehind(fidPlaces, dataG1, {fidPlaces, 0x77, "abc"});
    const VerificationReport report = verifyImage(image.bytes(), roots());
    EXPECT_EQ(report.verdict, Verdict::Altered);
    EXPECT_THAT(
        codesOf(report), ElementsAre(
                             FindingCode::UnknownRecordType, FindingCode::SignatureMissing,
                             FindingCode::SignatureWithoutData));
}

TEST(DamageTest, LooksAtNothingInAFileOfTooManyRecords)
{
    Image image = driver();
    const auto count = static_cast<int>(image.records.size());
    constexpr int most = 1000;
    for (int i = count; i < most; ++i)
        image.append({0x0505, 0x77, {}});
    const VerificationReport full = verifyImage(image.bytes(), roots());
    EXPECT_EQ(full.applications.size(), 1U);
    image.append({0x0505, 0x77, {}});
    const VerificationReport report = verifyImage(image.bytes(), roots());
    EXPECT_EQ(report.verdict, Verdict::Unproven);
    EXPECT_THAT(report.applications, IsEmpty());
    EXPECT_THAT(
        toldOf(report), ElementsAre(Told{
                            FindingCode::TooManyRecords, Severity::Unproven, 0, -1,
                            "The file has 1001 records, no card has as many; none was looked at."}));
}

} // namespace

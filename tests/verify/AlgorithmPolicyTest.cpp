// A machine that cannot check everything: what it cannot check is unproven there, and not altered.
#include "AlgorithmPolicy.h"
#include "Image.h"
#include "Roots.h"
#include "Told.h"

#include <cli/Downloads.h>
#include <scardverify/VerifyImage.h>
#include <simulator/DriverCard.h>
#include <support/ExpectedDriver.h>

#include <gmock/gmock.h>

namespace {

using namespace scard::verify;
using namespace test;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Not;

VerificationReport verifyUnder(Refused refused, const QByteArray& file, const std::vector<RootKey>& keys)
{
    const AlgorithmPolicy policy(refused);
    return verifyImage(file, keys);
}

TEST(AlgorithmPolicyTest, LeavesNothingBehind)
{
    const QByteArray& file = smallDownload("driver").file;
    EXPECT_EQ(verifyUnder(Refused::Sha1, file, roots()).verdict == Verdict::Genuine, false);
    EXPECT_EQ(verifyImage(file, roots()).verdict, Verdict::Genuine);
}

TEST(AlgorithmPolicyTest, CannotJudgeSignaturesWithSha1WhereTheyAreForbidden)
{
    const Image image(smallDownload("driver").file);
    const VerificationReport report = verifyUnder(Refused::Sha1Signatures, image.bytes(), roots());
    EXPECT_EQ(report.verdict, Verdict::Unproven);
    const ApplicationReport& application = report.applications.front();
    EXPECT_EQ(application.signedRecords(), 12);
    EXPECT_EQ(application.count(SignatureVerdict::Unsupported), 12);
    EXPECT_FALSE(application.signaturesHold());
    EXPECT_THAT(codesOf(report), Each(FindingCode::SignatureUnsupported));
    EXPECT_THAT(
        toldOf(report),
        Contains(Told{
            FindingCode::SignatureUnsupported, Severity::Unproven, 0x0506, image.offsetOf(0x0506, dataG1),
            "EF_Places: this machine cannot check signatures of RSA-1024."}));
    // Certificates need no signature with SHA-1, only the digest.
    for (const CertificateReport& each : application.chain)
        EXPECT_NE(each.verdict, CertificateVerdict::Invalid);
}

TEST(AlgorithmPolicyTest, CannotJudgeTheFirstGenerationWithoutSha1)
{
    const VerificationReport report = verifyUnder(Refused::Sha1, smallDownload("driver").file, roots());
    EXPECT_EQ(report.verdict, Verdict::Unproven);
    EXPECT_THAT(
        codesOf(report),
        AllOf(Contains(FindingCode::CertificateUnsupported), Not(Contains(FindingCode::CertificateInvalid))));
}

TEST(AlgorithmPolicyTest, CannotOpenCertificatesOfTheFirstGenerationWithoutBareRsa)
{
    const Image image(smallDownload("driver").file);
    const VerificationReport report = verifyUnder(Refused::BareRsa, image.bytes(), roots());
    EXPECT_EQ(report.verdict, Verdict::Unproven);
    EXPECT_THAT(
        toldOf(report),
        ElementsAre(Told{
            FindingCode::CertificateUnsupported, Severity::Unproven, 0xC108, image.offsetOf(0xC108, dataG1),
            "EF_CA_Certificate: this machine cannot open certificates of RSA-1024 with SHA-1."}));
    const ApplicationReport& application = report.applications.front();
    EXPECT_EQ(application.count(SignatureVerdict::NoCertificate), 12);
    EXPECT_EQ(application.chain.at(1).verdict, CertificateVerdict::NotChecked);
    EXPECT_EQ(application.chain.at(2).verdict, CertificateVerdict::NotChecked);
}

TEST(AlgorithmPolicyTest, CannotJudgeTheSecondGenerationWithoutItsDigest)
{
    const Image image(smallDownload("driverV2").file);
    const VerificationReport report = verifyUnder(Refused::Sha256, image.bytes(), allRoots());
    EXPECT_EQ(report.verdict, Verdict::Unproven);
    EXPECT_THAT(
        toldOf(report),
        AllOf(
            Contains(Told{
                FindingCode::CertificateUnsupported, Severity::Unproven, 0xC108,
                image.offsetOf(0xC108, dataG2), "EF_CA_Certificate: this machine cannot check NIST P-256."}),
            Contains(Told{
                FindingCode::SignatureUnsupported, Severity::Unproven, 0x0506, image.offsetOf(0x0506, dataG2),
                "EF_Places: this machine cannot check signatures of NIST P-256."})));
    EXPECT_EQ(report.applications.at(1).count(SignatureVerdict::Unsupported), 20);
}

TEST(AlgorithmPolicyTest, CannotJudgeACurveThatOpenSslHasNot)
{
    sim::DriverParametersG2 parameters;
    parameters.curve = sim::Curve::BrainpoolP256r1;
    const QByteArray file = arrayOf(expectedDriverImageG2(sim::makeDriverCardG2(parameters)));
    const VerificationReport report =
        verifyUnder(Refused::Brainpool, file, roots(sim::Curve::BrainpoolP256r1));
    EXPECT_EQ(report.verdict, Verdict::Unproven);
    EXPECT_THAT(
        codesOf(report), AllOf(
                             Contains(FindingCode::CertificateUnsupported),
                             Not(Contains(FindingCode::CertificateUnreadable))));
}

TEST(AlgorithmPolicyTest, ReadsNoRootKeyOnACurveThatOpenSslHasNot)
{
    const QByteArray file = rootFileG2(sim::Curve::BrainpoolP256r1);
    EXPECT_TRUE(readRootKey(file).key);
    const AlgorithmPolicy policy(Refused::Brainpool);
    const RootKeyResult result = readRootKey(file);
    EXPECT_FALSE(result.key);
    EXPECT_EQ(result.reason, "this machine has not got its curve, brainpoolP256r1");
}

} // namespace

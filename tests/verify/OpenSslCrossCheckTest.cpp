// The same downloads, checked with the program openssl: it shares no code with the library but OpenSSL's own.
#include "Certificates.h"
#include "Image.h"
#include "Roots.h"

#include <scardverify/VerifyImage.h>
#include <simulator/DriverCard.h>
#include <support/ExpectedDriver.h>
#include <support/ProgramRun.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace {

using namespace scard::verify;
using namespace test;

QString write(const QTemporaryDir& folder, const char* name, const QByteArray& bytes)
{
    const QString path = folder.filePath(name);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    return path;
}

std::string checkedWithOpenSsl(const QByteArray& image, sim::Curve curve)
{
    const QTemporaryDir folder;
    const Outcome outcome = runProgram(
        CHECK_WITH_OPENSSL, {write(folder, "image", image), write(folder, "root-g1", rootFileG1()),
                             write(folder, "root-g2", rootFileG2(curve))});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
}

std::string line(const char* what, int holds, int fails)
{
    return what + (' ' + std::to_string(holds)) + " hold " + std::to_string(fails) + " fail\n";
}

/// The report in the words of the script.
std::string toldByLibrary(const QByteArray& image, sim::Curve curve)
{
    std::string text;
    for (const ApplicationReport& application : verifyImage(image, roots(curve)).applications) {
        const bool isFirst = application.generation == Generation::First;
        int holds = 0;
        int fails = 0;
        for (const CertificateReport& each : application.chain) {
            // A root of the first generation is no certificate; the link needs the root before.
            if (each.role == CertificateRole::Link || (isFirst && each.role == CertificateRole::Root))
                continue;
            const bool isGood =
                each.verdict == CertificateVerdict::Valid || each.verdict == CertificateVerdict::Trusted;
            (isGood ? holds : fails) += each.verdict == CertificateVerdict::NotChecked ? 0 : 1;
        }
        text += line(isFirst ? "G1 certificates" : "G2 certificates", holds, fails);
        text += line(
            isFirst ? "G1 signatures" : "G2 signatures", application.count(SignatureVerdict::Valid),
            application.count(SignatureVerdict::Invalid));
    }
    return text;
}

void expectTheSame(const QByteArray& image, sim::Curve curve, const std::string& expected)
{
    EXPECT_EQ(checkedWithOpenSsl(image, curve), expected);
    EXPECT_EQ(toldByLibrary(image, curve), expected);
}

void flip(Image& image, unsigned int fid, unsigned int type, int at)
{
    QByteArray& payload = image.payload(fid, type);
    payload[at] = static_cast<char>(payload.at(at) ^ 0x01);
}

TEST(OpenSslCrossCheckTest, AgreesOnACardAsItIs)
{
    expectTheSame(
        driverV2().bytes(), sim::Curve::NistP256,
        line("G1 certificates", 2, 0) + line("G1 signatures", 12, 0) + line("G2 certificates", 4, 0) +
            line("G2 signatures", 20, 0));
}

TEST(OpenSslCrossCheckTest, AgreesOnAnotherCurveAndDigest)
{
    sim::DriverParametersG2 parameters;
    parameters.curve = sim::Curve::BrainpoolP384r1;
    const QByteArray file = arrayOf(expectedDriverImageG2(sim::makeDriverCardG2(parameters)));
    expectTheSame(
        file, parameters.curve,
        line("G1 certificates", 2, 0) + line("G1 signatures", 12, 0) + line("G2 certificates", 4, 0) +
            line("G2 signatures", 14, 0));
}

TEST(OpenSslCrossCheckTest, AgreesOnChangedBytes)
{
    Image image = driverV2();
    flip(image, 0x0505, dataG1, 7);
    flip(image, 0x0506, signatureG1, 7);
    flip(image, 0xC101, dataG2, placesG2::holder);
    flip(image, 0xC108, dataG2, placesG2::validFrom);
    flip(image, 0x0502, dataG2, 3);
    flip(image, 0x0505, signatureG2, 40);
    flip(image, 0x0506, signatureG2, 3);
    expectTheSame(
        image.bytes(), sim::Curve::NistP256,
        line("G1 certificates", 2, 0) + line("G1 signatures", 10, 2) + line("G2 certificates", 2, 2) +
            line("G2 signatures", 17, 3));
}

TEST(OpenSslCrossCheckTest, AgreesOnChangedCertificatesOfTheFirstGeneration)
{
    for (const int at : {3, 150}) {
        Image memberState = driver();
        flip(memberState, 0xC108, dataG1, at);
        expectTheSame(
            memberState.bytes(), sim::Curve::NistP256,
            line("G1 certificates", 0, 1) + line("G1 signatures", 0, 0));
        Image card = driver();
        flip(card, 0xC100, dataG1, at);
        expectTheSame(
            card.bytes(), sim::Curve::NistP256, line("G1 certificates", 1, 1) + line("G1 signatures", 0, 0));
    }
}

} // namespace

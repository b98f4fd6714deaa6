// One byte of a genuine download has another value: it is genuine no longer, unless the report names the byte
// as one that nothing vouches for.
#include "Certificates.h"
#include "Image.h"
#include "Roots.h"

#include <cli/Downloads.h>
#include <scardverify/VerifyImage.h>
#include <simulator/DriverCard.h>
#include <simulator/WorkshopCard.h>
#include <support/ExpectedDriver.h>
#include <support/ExpectedWorkshop.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <tuple>

namespace {

using namespace scard::verify;
using namespace test;
using testing::ElementsAre;

/// Bytes of an image that nothing vouches for: where, how many, of which EF.
using Part = std::tuple<long long, long long, unsigned int>;

std::vector<Part> partsOf(const VerificationReport& report)
{
    std::vector<Part> parts;
    for (const UncoveredPart& each : report.uncovered)
        parts.emplace_back(each.offset, each.length, each.fid);
    return parts;
}

bool isUncovered(const VerificationReport& report, long long offset)
{
    return std::any_of(report.uncovered.begin(), report.uncovered.end(), [offset](const UncoveredPart& part) {
        return offset >= part.offset && offset < part.offset + part.length;
    });
}

/// Bytes of an image.
struct Range
{
    int begin;
    int end;
};

Range rangeOf(const Image& image, unsigned int fid, unsigned int type)
{
    constexpr int headerLength = 5;
    const auto begin = static_cast<int>(image.offsetOf(fid, type));
    return {begin, begin + headerLength + image.payload(fid, type).size()};
}

/// One record of each kind: what a byte does not depend on how many there are.
QByteArray smallestDriver()
{
    sim::DriverParametersG2 parameters;
    parameters.version2 = true;
    parameters.eventsPerType = parameters.faultsPerType = 1;
    parameters.activityLength = 200;
    parameters.first.days = 1;
    parameters.vehicles = parameters.places = parameters.gnssPlaces = 1;
    parameters.specificConditions = parameters.vehicleUnits = 1;
    parameters.borderCrossings = parameters.loadUnloadOperations = parameters.loadTypeEntries = 1;
    return secondOf(arrayOf(expectedDriverImageG2(sim::makeDriverCardG2(parameters))));
}

QByteArray smallestWorkshop()
{
    sim::WorkshopParametersG2 parameters;
    parameters.version2 = true;
    parameters.eventsPerType = parameters.faultsPerType = 1;
    parameters.activityLength = 200;
    parameters.vehicles = parameters.places = parameters.gnssPlaces = 1;
    parameters.specificConditions = parameters.vehicleUnits = parameters.calibrations = 1;
    parameters.borderCrossings = parameters.loadUnloadOperations = parameters.loadTypeEntries = 1;
    return secondOf(arrayOf(expectedWorkshopImageG2(sim::makeWorkshopCardG2(parameters))));
}

/// How a byte is changed: one bit, which is another one from byte to byte, or all bits.
enum class Patterns
{
    Both,
    InTurn, ///< where each signature takes long to check: the one for even places, the other for odd ones
};

std::vector<int> patternsAt(int at, Patterns patterns)
{
    const int oneBit = 1 << (at % 8);
    constexpr int allBits = 0xFF;
    if (patterns == Patterns::Both)
        return {oneBit, allBits};
    return {at % 2 == 0 ? oneBit : allBits};
}

void tryEachByte(const QByteArray& file, const std::vector<RootKey>& roots, Patterns patterns, Range range)
{
    const VerificationReport before = verifyImage(file, roots);
    ASSERT_EQ(before.verdict, Verdict::Genuine);
    const int stride = std::max(1, qEnvironmentVariableIntValue("FAULT_STRIDE"));
    int tried = 0;
    for (int at = range.begin; at < range.end; at += stride) {
        const bool mayChange = isUncovered(before, at);
        for (const int pattern : patternsAt(at, patterns)) {
            QByteArray changed = file;
            changed[at] = static_cast<char>(changed.at(at) ^ pattern);
            const Verdict verdict = verifyImage(changed, roots).verdict;
            ASSERT_TRUE(mayChange || verdict != Verdict::Genuine) << "byte " << at << " xor " << pattern;
        }
        ++tried;
    }
    EXPECT_GT(tried, 0);
}

void tryEachByte(const QByteArray& file, const std::vector<RootKey>& roots, Patterns patterns)
{
    tryEachByte(file, roots, patterns, {0, file.size()});
}

TEST(FlippedByteTest, OfADriverCardOfTheFirstGeneration)
{
    const QByteArray& file = smallDownload("driver").file;
    // EF_ICC but the serial number, then EF_IC.
    EXPECT_THAT(
        partsOf(verifyImage(file, roots())),
        ElementsAre(Part{0, 6, 0x0002}, Part{14, 16, 0x0002}, Part{30, 13, 0x0005}));
    tryEachByte(file, roots(), Patterns::Both);
}

TEST(FlippedByteTest, OfACompanyCardOfTheFirstGeneration)
{
    const QByteArray& file = smallDownload("company").file;
    EXPECT_THAT(
        partsOf(verifyImage(file, roots())),
        ElementsAre(Part{0, 6, 0x0002}, Part{14, 16, 0x0002}, Part{30, 13, 0x0005}));
    tryEachByte(file, roots(), Patterns::Both);
}

TEST(FlippedByteTest, OfADriverCardOfTheSecondGeneration)
{
    const QByteArray file = smallestDriver();
    const Image image(file);
    const long long link = image.offsetOf(0xC109, dataG2);
    EXPECT_THAT(
        partsOf(verifyImage(file, roots())),
        ElementsAre(
            Part{0, 6, 0x0002}, Part{14, 16, 0x0002}, Part{30, 13, 0x0005}, Part{link, 5 + 204, 0xC109}));
    tryEachByte(file, roots(), Patterns::InTurn);
}

TEST(FlippedByteTest, OfAWorkshopCardOfTheSecondGeneration)
{
    const QByteArray file = smallestWorkshop();
    const Image image(file);
    const long long link = image.offsetOf(0xC109, dataG2);
    EXPECT_THAT(
        partsOf(verifyImage(file, roots())),
        ElementsAre(
            Part{0, 6, 0x0002}, Part{14, 16, 0x0002}, Part{30, 13, 0x0005}, Part{link, 5 + 204, 0xC109}));
    tryEachByte(file, roots(), Patterns::InTurn);
}

TEST(FlippedByteTest, OfALinkCertificateThatTheRootBeforeVouchesFor)
{
    const QByteArray file = smallestDriver();
    const Image image(file);
    // A link that names another root before is one that cannot be checked: its issuer alone may be another.
    const long long issuer = image.offsetOf(0xC109, dataG2) + 5 + placesG2::issuer;
    EXPECT_THAT(
        partsOf(verifyImage(file, allRoots())),
        ElementsAre(Part{0, 6, 0x0002}, Part{14, 16, 0x0002}, Part{30, 13, 0x0005}, Part{issuer, 8, 0xC109}));
    tryEachByte(file, allRoots(), Patterns::Both, rangeOf(image, 0xC109, dataG2));
}

TEST(FlippedByteTest, OfPaddedCertificatesOfTheFirstGeneration)
{
    constexpr int padding = 20;
    Image image(smallDownload("company").file);
    for (const unsigned int fid : {0xC100U, 0xC108U})
        image.payload(fid, dataG1) += QByteArray(padding, '\0');
    const long long card = image.offsetOf(0xC100, dataG1) + 5 + 194;
    const long long memberState = image.offsetOf(0xC108, dataG1) + 5 + 194;
    EXPECT_THAT(
        partsOf(verifyImage(image.bytes(), roots())),
        ElementsAre(
            Part{0, 6, 0x0002}, Part{14, 16, 0x0002}, Part{30, 13, 0x0005}, Part{card, padding, 0xC100},
            Part{memberState, padding, 0xC108}));
    tryEachByte(image.bytes(), roots(), Patterns::Both, rangeOf(image, 0xC100, dataG1));
    tryEachByte(image.bytes(), roots(), Patterns::Both, rangeOf(image, 0xC108, dataG1));
}

TEST(FlippedByteTest, OfPaddedCertificatesOfTheSecondGeneration)
{
    constexpr int padding = 12;
    constexpr unsigned int fids[] = {0xC100, 0xC101, 0xC108};
    Image image(smallestDriver());
    image.remove(0xC109, dataG2);
    std::vector<Part> expected = {{0, 6, 0x0002}, {14, 16, 0x0002}, {30, 13, 0x0005}};
    for (const unsigned int fid : fids) {
        image.payload(fid, dataG2) += QByteArray(padding, '\0');
        expected.emplace_back(image.offsetOf(fid, dataG2) + 5 + placesG2::length, padding, fid);
    }
    EXPECT_EQ(partsOf(verifyImage(image.bytes(), roots())), expected);
    for (const unsigned int fid : fids)
        tryEachByte(image.bytes(), roots(), Patterns::InTurn, rangeOf(image, fid, dataG2));
}

TEST(FlippedByteTest, ChangesNothingInAnUncoveredPart)
{
    const QByteArray& file = smallDownload("driver").file;
    const VerificationReport before = verifyImage(file, roots());
    constexpr int headerLength = 5;
    const Image image(file);
    int tried = 0;
    for (const unsigned int fid : {0x0002U, 0x0005U}) {
        const Range range = rangeOf(image, fid, dataG1);
        for (int at = range.begin + headerLength; at < range.end; ++at) {
            if (!isUncovered(before, at))
                continue;
            QByteArray changed = file;
            changed[at] = static_cast<char>(changed.at(at) ^ 0xFF);
            EXPECT_EQ(verifyImage(changed, roots()).verdict, Verdict::Genuine) << at;
            ++tried;
        }
    }
    EXPECT_EQ(tried, 25 - 8 + 8);
}

} // namespace

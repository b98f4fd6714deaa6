// The contents of company and control cards, read back byte by byte with nothing of the code that wrote them.

#include "Card.h"
#include "CompanyCard.h"
#include "ControlCard.h"
#include "ReadBack.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <set>

namespace {

using sim::AidG1;
using sim::AidG2;
using sim::Bytes;
using sim::CompanyParameters;
using sim::CompanyParametersG2;
using sim::makeCompanyCardG1;
using sim::makeCompanyCardG2;
using sim::readU16;
using sim::readU32;
using sim::slice;
using sim::toHex;

Bytes contentOf(const sim::CardDescription& description, const Bytes& aid, std::uint16_t fid)
{
    const sim::Card card(description);
    const Bytes* content = card.file(aid, fid);
    return content ? *content : Bytes();
}

/// From the oldest to the newest record in use.
std::vector<Bytes> activities(const Bytes& file)
{
    const std::size_t slots = (file.size() - 2) / 46;
    std::vector<Bytes> all;
    for (std::size_t i = 1; i <= slots; ++i) {
        const Bytes record = slice(file, 2 + 46 * ((readU16(file, 0) + i) % slots), 46);
        if (record.at(0) != 0) {
            all.push_back(record);
        }
    }
    return all;
}

const Bytes NoCardNumber(18, 0x00);
const Bytes NoRegistration = sim::fromHex("00 00 20 20 20 20 20 20 20 20 20 20 20 20 20");
const Bytes EmptyRecord = sim::fromHex("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
                                       "00 00 20 20 20 20 20 20 20 20 20 20 20 20 20"
                                       "00 00 00 00 00 00 00 00");

TEST(CompanyActivities, ascendInTimeUpToTheNewest)
{
    const CompanyParameters parameters;
    const Bytes file = contentOf(makeCompanyCardG1(parameters), AidG1, 0x050D);
    ASSERT_EQ(file.size(), 2u + 46 * 230);
    const std::vector<Bytes> all = activities(file);
    ASSERT_EQ(all.size(), readU16(file, 0) + 1u);
    for (std::size_t i = 1; i < all.size(); ++i) {
        EXPECT_LT(readU32(all[i - 1], 1), readU32(all[i], 1));
        const std::uint32_t weekday = (readU32(all[i], 1) / SecondsPerDay + 3) % 7;
        EXPECT_LT(weekday, 5u);
    }
    EXPECT_EQ(readU32(all.back(), 1), parameters.lastActivity);
    for (std::size_t slot = all.size(); slot < 230; ++slot) {
        EXPECT_EQ(slice(file, 2 + 46 * slot, 46), EmptyRecord);
    }
}

TEST(CompanyActivities, haveWhatBelongsToTheirType)
{
    std::set<int> types;
    for (std::uint32_t seed = 1; seed <= 5; ++seed) {
        CompanyParameters parameters;
        parameters.seed = seed;
        std::set<Bytes> lockedIn;
        for (const Bytes& record : activities(contentOf(makeCompanyCardG1(parameters), AidG1, 0x050D))) {
            const int type = record.at(0);
            types.insert(type);
            const Bytes cardNumber = slice(record, 5, 18);
            const Bytes registration = slice(record, 23, 15);
            if (type == 1) {
                EXPECT_EQ(toHex(slice(cardNumber, 0, 2)), "01 0D") << "a driver card of the nation";
                EXPECT_EQ(textOf(cardNumber, 2, 1), "D");
                EXPECT_EQ(registration, NoRegistration);
            } else {
                EXPECT_EQ(cardNumber, NoCardNumber);
                EXPECT_EQ(toHex(slice(registration, 0, 2)), "0D 01");
                EXPECT_EQ(lockedIn.count(registration), type == 3 ? 0u : 1u);
            }
            if (type == 3) {
                lockedIn.insert(registration);
            } else if (type == 4) {
                lockedIn.erase(registration);
            }
            const std::uint32_t begin = readU32(record, 38);
            const std::uint32_t end = readU32(record, 42);
            if (type <= 2) {
                EXPECT_LT(begin, end);
                EXPECT_EQ(end, readU32(record, 1));
            } else {
                EXPECT_EQ(begin, 0u);
                EXPECT_EQ(end, 0u);
            }
        }
    }
    EXPECT_EQ(types, (std::set<int>{1, 2, 3, 4}));
}

TEST(CompanyActivities, areTheSameInBothApplications)
{
    CompanyParametersG2 parameters;
    parameters.first.activityRecords = 231;
    parameters.activityRecords = 300;
    const sim::CardDescription card = makeCompanyCardG2(parameters);
    const Bytes first = contentOf(card, AidG1, 0x050D);
    const Bytes second = contentOf(card, AidG2, 0x050D);
    EXPECT_EQ(first.size(), 2u + 46 * 231);
    EXPECT_EQ(second.size(), 2u + 46 * 300);
    EXPECT_EQ(activities(first), activities(second));
    EXPECT_EQ(contentOf(card, AidG1, 0x0520), contentOf(card, AidG2, 0x0520));
    EXPECT_EQ(toHex(contentOf(card, AidG1, 0x0501)), "04 00 00 00 E7");
    EXPECT_EQ(toHex(contentOf(card, AidG2, 0x0501)), "04 01 00 01 2C");
    EXPECT_EQ(first, contentOf(makeCompanyCardG1(parameters.first), AidG1, 0x050D));
}

TEST(CompanyActivities, giveWayToNewerOnes)
{
    CompanyParameters parameters;
    const std::vector<Bytes> all = activities(contentOf(makeCompanyCardG1(parameters), AidG1, 0x050D));
    parameters.activityRecords = 7;
    const Bytes file = contentOf(makeCompanyCardG1(parameters), AidG1, 0x050D);
    EXPECT_EQ(readU16(file, 0), (all.size() - 1) % 7);
    const std::vector<Bytes> kept = activities(file);
    ASSERT_EQ(kept.size(), 7u);
    EXPECT_TRUE(std::equal(kept.begin(), kept.end(), all.end() - 7));
}

TEST(CompanyActivities, mayHaveNoRoom)
{
    CompanyParametersG2 parameters;
    parameters.first.activityRecords = 0;
    parameters.activityRecords = 0;
    const sim::CardDescription card = makeCompanyCardG2(parameters);
    EXPECT_EQ(toHex(contentOf(card, AidG1, 0x050D)), "00 00");
    EXPECT_EQ(toHex(contentOf(card, AidG2, 0x050D)), "00 00");
    EXPECT_EQ(toHex(contentOf(card, AidG1, 0x0501)), "04 00 00 00 00");
    EXPECT_EQ(toHex(contentOf(card, AidG2, 0x0501)), "04 01 00 00 00");
}

TEST(CompanyIdentification, hasTheFieldsOfTheRegulation)
{
    CompanyParameters parameters;
    parameters.nation = 0x28;
    parameters.codePage = 2;
    parameters.companyName = "Łódź Transport";
    parameters.companyAddress = "ul. Długa 3";
    parameters.language = "en";
    parameters.ownerIdentification = "PL12345";
    parameters.indices = "b20";
    const Bytes identification = contentOf(makeCompanyCardG1(parameters), AidG1, 0x0520);
    ASSERT_EQ(identification.size(), 139u);
    EXPECT_EQ(identification.at(0), 0x28);
    EXPECT_EQ(textOf(identification, 1, 16), "PL12345      b20");
    EXPECT_EQ(readU32(identification, 53), readU32(identification, 57));
    EXPECT_LT(readU32(identification, 57), parameters.lastActivity);
    EXPECT_GT(readU32(identification, 61), parameters.lastActivity);
    EXPECT_NEAR(
        (readU32(identification, 61) - readU32(identification, 57)) / static_cast<double>(SecondsPerDay),
        1826, 5);
    EXPECT_EQ(textOf(identification, 65, 36), "\x02\xA3\xF3\x64\xBC Transport" + std::string(21, ' '));
    EXPECT_EQ(textOf(identification, 101, 12), "\x02ul. D\xB3uga 3");
    EXPECT_EQ(textOf(identification, 137, 2), "en");

    parameters = {};
    const Bytes invented = contentOf(makeCompanyCardG1(parameters), AidG1, 0x0520);
    for (const std::size_t offset : {17u, 65u, 101u}) {
        EXPECT_EQ(invented.at(offset), 1);
        EXPECT_NE(slice(invented, offset + 1, 35), Bytes(35, 0x20));
    }
    EXPECT_EQ(textOf(invented, 14, 3), "000");
    EXPECT_EQ(textOf(invented, 137, 2), "de");
}

TEST(CompanySerialNumber, canBeChosen)
{
    CompanyParametersG2 parameters;
    parameters.first.serial = {{0x00, 0x12, 0x34, 0x56, 0x03, 0x24, 0x0A, 0x54}};
    const sim::CardDescription card = makeCompanyCardG2(parameters);
    const Bytes icc = contentOf(card, sim::MasterFile, 0x0002);
    EXPECT_EQ(toHex(slice(icc, 1, 8)), "00 12 34 56 03 24 0A 54");
    EXPECT_EQ(toHex(slice(contentOf(makeCompanyCardG2(), sim::MasterFile, 0x0002), 7, 1)), "04");
    // The holder of the card's certificates is named by it.
    const Bytes certificate = contentOf(card, AidG2, 0xC100);
    EXPECT_EQ(toHex(slice(certificate, 115, 8)), "00 12 34 56 03 24 0A 54");
    EXPECT_NE(contentOf(card, AidG1, 0xC100), contentOf(makeCompanyCardG2(), AidG1, 0xC100));
}

TEST(CompanyVersion2, hasItsTwoFiles)
{
    CompanyParametersG2 parameters;
    parameters.version2 = true;
    const sim::CardDescription card = makeCompanyCardG2(parameters);
    EXPECT_EQ(toHex(contentOf(card, AidG2, 0x0501)), "04 01 01 00 E6");
    EXPECT_EQ(toHex(contentOf(card, AidG2, 0x0525)), "00 02 0C 00");
    EXPECT_EQ(contentOf(card, AidG2, 0x0540).size(), 3072u);
    EXPECT_TRUE(contentOf(makeCompanyCardG2(), AidG2, 0x0525).empty());
}

TEST(CompanySeed, givesTheSameBytesEachTimeAndOthersForAnotherNumber)
{
    CompanyParametersG2 parameters;
    parameters.version2 = true;
    const sim::CardDescription first = makeCompanyCardG2(parameters);
    EXPECT_EQ(everything(first), everything(makeCompanyCardG2(parameters)));
    parameters.first.seed = 2;
    const sim::CardDescription second = makeCompanyCardG2(parameters);
    const std::pair<Bytes, std::uint16_t> files[] = {{sim::MasterFile, 0x0002}, {sim::MasterFile, 0x0005},
                                                     {AidG1, 0xC100},           {AidG1, 0x0520},
                                                     {AidG1, 0x050D},           {AidG2, 0xC100}};
    for (const auto& [aid, fid] : files) {
        EXPECT_NE(contentOf(first, aid, fid), contentOf(second, aid, fid)) << std::hex << fid;
    }
}

TEST(CompanyParametersThatNoCardHas, areRefused)
{
    const auto refused = [](const char* what, const std::function<void(CompanyParameters&)>& change) {
        CompanyParametersG2 parameters;
        change(parameters.first);
        EXPECT_THROW(makeCompanyCardG1(parameters.first), std::invalid_argument) << what;
        EXPECT_THROW(makeCompanyCardG2(parameters), std::invalid_argument) << what;
    };
    refused("an activity in the last century", [](CompanyParameters& p) { p.lastActivity = 0; });
    refused("one far ahead", [](CompanyParameters& p) { p.lastActivity = 4000000000; });
    refused("a language in capitals", [](CompanyParameters& p) { p.language = "DE"; });
    refused("four indices", [](CompanyParameters& p) { p.indices = "0000"; });
    refused("a long owner", [](CompanyParameters& p) { p.ownerIdentification = "12345678901234"; });
    refused("a name of another code page", [](CompanyParameters& p) { p.companyName = "Łódź"; });
    refused("an unknown code page", [](CompanyParameters& p) { p.codePage = 17; });
}

TEST(ControlCardOfTheSecondGeneration, tellsTheControlsOfTheFirst)
{
    sim::ControlParametersG2 parameters;
    parameters.version2 = true;
    parameters.first.activityRecords = 231;
    parameters.activityRecords = 300;
    const sim::CardDescription card = sim::makeControlCardG2(parameters);
    const Bytes first = contentOf(card, AidG1, 0x050C);
    const Bytes second = contentOf(card, AidG2, 0x050C);
    EXPECT_EQ(first, contentOf(sim::makeControlCardG1(parameters.first), AidG1, 0x050C));
    EXPECT_EQ(second.size(), 2u + 46 * 300);
    EXPECT_EQ(activities(second), activities(first));
    EXPECT_EQ(activities(second).size(), 40u);
    EXPECT_EQ(contentOf(card, AidG1, 0x0520), contentOf(card, AidG2, 0x0520));
    EXPECT_EQ(toHex(contentOf(card, AidG1, 0x0501)), "03 00 00 00 E7");
    EXPECT_EQ(toHex(contentOf(card, AidG2, 0x0501)), "03 01 01 01 2C");
    EXPECT_EQ(toHex(contentOf(card, AidG2, 0x0525)), "00 02 0C 00");

    parameters.activityRecords = 7;
    const Bytes wrapped = contentOf(sim::makeControlCardG2(parameters), AidG2, 0x050C);
    EXPECT_EQ(readU16(wrapped, 0), 39 % 7);
    EXPECT_EQ(activities(wrapped).back(), activities(first).back());
    parameters.activityRecords = 0;
    EXPECT_THROW(sim::makeControlCardG2(parameters), std::invalid_argument);
    parameters = {};
    parameters.first.lastControl = 0;
    EXPECT_THROW(sim::makeControlCardG2(parameters), std::invalid_argument);
}

} // namespace

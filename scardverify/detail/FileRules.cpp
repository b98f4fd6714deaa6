#include "FileRules.h"

#include "OtherFids.h"

#include <scard/records/Fid.h>
#include <scard/SCardMeta.h>

#include <algorithm>
#include <iterator>

namespace scard::verify::detail {

namespace {

// Cards, as a set.
constexpr unsigned driver = 1;
constexpr unsigned workshop = 2;
constexpr unsigned control = 4;
constexpr unsigned company = 8;
constexpr unsigned onTheRoad = driver | workshop;
constexpr unsigned office = control | company;
constexpr unsigned allCards = onTheRoad | office;

// Applications, as a set.
constexpr unsigned inFirst = 1;
constexpr unsigned inSecond = 2;
constexpr unsigned inVersion2 = 4; ///< the second, from version 2 on
constexpr unsigned inBoth = inFirst | inSecond;

struct Row
{
    unsigned short fid;
    unsigned cards;
    unsigned applications;
    Protection protection;
    bool isRequired;
};

constexpr bool always = true;
/// Not in every download: not part of the regulation's, or readable with keys only.
constexpr bool sometimes = false;

/// Appendix 2 has the EFs of each card, Appendix 7 those that are downloaded.
constexpr Row rows[] = {
    {fidIcc, allCards, inBoth, Protection::None, sometimes},
    {fidIc, allCards, inBoth, Protection::None, sometimes},
    {fidExtendedLength, allCards, inBoth, Protection::None, sometimes},
    {fidDir, allCards, inBoth, Protection::None, sometimes},
    {fidAtrInfo, allCards, inBoth, Protection::None, sometimes},
    {fidSensorInstallationData, workshop, inBoth, Protection::None, sometimes},
    {fidVuConfiguration, allCards, inVersion2, Protection::None, sometimes},
    {fidCardCertificate, allCards, inBoth, Protection::Certificate, sometimes},
    {fidCardSignCertificate, onTheRoad, inSecond, Protection::Certificate, sometimes},
    {fidCaCertificate, allCards, inBoth, Protection::Certificate, sometimes},
    {fidLinkCertificate, allCards, inSecond, Protection::Certificate, sometimes},
    {fidApplicationIdentification, allCards, inBoth, Protection::Signature, always},
    {fidApplicationIdentificationV2, allCards, inVersion2, Protection::Signature, always},
    {fidIdentification, onTheRoad, inBoth, Protection::Signature, always},
    {fidIdentification, office, inFirst, Protection::Signature, sometimes},
    {fidIdentification, office, inSecond, Protection::Signature, always},
    {fidControllerActivityData, control, inBoth, Protection::Signature, always},
    {fidCompanyActivityData, company, inBoth, Protection::Signature, always},
    {fidCardDownload, driver, inBoth, Protection::OptionalSignature, sometimes},
    {fidCardDownloadWorkshop, workshop, inBoth, Protection::OptionalSignature, sometimes},
    {fidCalibration, workshop, inBoth, Protection::Signature, always},
    {fidDrivingLicenceInfo, driver, inBoth, Protection::Signature, always},
    {fidEventsData, onTheRoad, inBoth, Protection::Signature, always},
    {fidFaultsData, onTheRoad, inBoth, Protection::Signature, always},
    {fidDriverActivityData, onTheRoad, inBoth, Protection::Signature, always},
    {fidVehiclesUsed, onTheRoad, inBoth, Protection::Signature, always},
    {fidPlaces, onTheRoad, inBoth, Protection::Signature, always},
    {fidCurrentUsage, onTheRoad, inBoth, Protection::Signature, always},
    {fidControlActivityData, onTheRoad, inBoth, Protection::Signature, always},
    {fidSpecificConditions, onTheRoad, inBoth, Protection::Signature, always},
    {fidVehicleUnitsUsed, onTheRoad, inSecond, Protection::Signature, always},
    {fidGnssPlaces, onTheRoad, inSecond, Protection::Signature, always},
    {fidPlacesAuthentication, onTheRoad, inVersion2, Protection::Signature, always},
    {fidGnssPlacesAuthentication, onTheRoad, inVersion2, Protection::Signature, always},
    {fidBorderCrossings, onTheRoad, inVersion2, Protection::Signature, always},
    {fidLoadUnloadOperations, onTheRoad, inVersion2, Protection::Signature, always},
    {fidLoadTypeEntries, onTheRoad, inVersion2, Protection::Signature, always},
    {fidCalibrationAddData, workshop, inVersion2, Protection::Signature, always},
};

unsigned cardsOf(int cardType)
{
    switch (cardType) {
    case SCardMeta::DriverCard:
        return driver;
    case SCardMeta::WorkshopCard:
        return workshop;
    case SCardMeta::ControlCard:
        return control;
    case SCardMeta::CompanyCard:
        return company;
    default:
        return allCards;
    }
}

} // namespace

bool Expected::isSigned() const
{
    return generation == Generation::First || (cardsOf(cardType) & onTheRoad) != 0;
}

bool isOfChip(unsigned short fid)
{
    return std::any_of(std::begin(rows), std::end(rows), [fid](const Row& row) {
        return row.fid == fid && row.protection == Protection::None && row.cards == allCards &&
               row.applications == inBoth;
    });
}

std::vector<FileRule> fileRules(const Expected& expected)
{
    const unsigned cards = cardsOf(expected.cardType);
    const unsigned application = expected.generation == Generation::First ? inFirst : inSecond;
    const bool takesVersion2 = application == inSecond && (expected.isVersion2 || cards == allCards);
    std::vector<FileRule> rules;
    for (const Row& row : rows) {
        if ((row.cards & cards) == 0 ||
            (row.applications & (application | (takesVersion2 ? inVersion2 : 0))) == 0)
            continue;
        const bool hasNoKey = row.protection == Protection::Signature && !expected.isSigned();
        rules.push_back(
            {row.fid, hasNoKey ? Protection::None : row.protection, row.isRequired && cards != allCards});
    }
    return rules;
}

} // namespace scard::verify::detail

#pragma once

#include <scard/detail/EfNames.h>
#include <scard/detail/EfTable.h>
#include <scard/records/BigEndian.h>
#include <scard/records/DriverCard.h>
#include <scard/records/Identification.h>

#include <cstdint>
#include <vector>

// What the tables of several kinds of cards are made of.

namespace scard::detail {

// Annex 1B and 1C, Appendix 2: sizes that no count decides.
constexpr std::uint32_t certificateBytesG1 = 194;
constexpr unsigned short eventGroupsG1 = 6;
constexpr unsigned short eventGroupsG2 = 11;
constexpr unsigned short faultGroups = 2;

/// The counts that EF_Application_Identification gives on driver and workshop cards of either generation.
template <typename Application>
struct UsageCounts
{
    static constexpr unsigned short id = fidApplicationIdentification;
    RecordCount eventsPerType = SCARD_COUNT_FIELD(id, Application, noOfEventsPerType);
    RecordCount faultsPerType = SCARD_COUNT_FIELD(id, Application, noOfFaultsPerType);
    RecordCount activityLength = SCARD_COUNT_FIELD(id, Application, activityStructureLength);
    RecordCount vehicles = SCARD_COUNT_FIELD(id, Application, noOfCardVehicleRecords);
    RecordCount places = SCARD_COUNT_FIELD(id, Application, noOfCardPlaceRecords);
};

/// Those of the second generation.
template <typename Application>
struct UsageCountsG2 : UsageCounts<Application>
{
    using UsageCounts<Application>::id;
    RecordCount gnssPlaces = SCARD_COUNT_FIELD(id, Application, noOfGNSSADRecords);
    RecordCount conditions = SCARD_COUNT_FIELD(id, Application, noOfSpecificConditionRecords);
    RecordCount vehicleUnits = SCARD_COUNT_FIELD(id, Application, noOfCardVehicleUnitRecords);
};

/// The two EFs that every card's identification reads, as the first rows of a table.
inline std::vector<EfRow> chipRows()
{
    constexpr auto identification = ReadAt::Identification;
    return {
        {efIcc, {one<CardIccIdentification>()}, Signing::Unsigned, InImage::Optional, identification},
        {efIc, {one<CardIcIdentification>()}, Signing::Unsigned, InImage::Optional, identification},
    };
}

/// The EFs that version 2.2 added to driver and workshop cards.
template <typename Application, typename ApplicationV2>
std::vector<EfRow> version2Rows()
{
    constexpr unsigned short id = fidApplicationIdentificationV2;
    const RecordCount crossings = SCARD_COUNT_FIELD(id, ApplicationV2, noOfBorderCrossingRecords);
    const RecordCount operations = SCARD_COUNT_FIELD(id, ApplicationV2, noOfLoadUnloadRecords);
    const RecordCount loadTypes = SCARD_COUNT_FIELD(id, ApplicationV2, noOfLoadTypeEntryRecords);
    const UsageCountsG2<Application> counts;

    const Piece pointer = one<UInt16>();
    constexpr auto yes = Signing::Signed;
    constexpr auto required = InImage::Required;
    constexpr auto optional = InImage::Optional;
    constexpr auto download = ReadAt::Download;
    constexpr auto v2 = OnCards::Version2_2;
    // clang-format off
    return {
        {efApplicationIdentificationV2, {one<ApplicationV2>()}, yes, required, download, v2},
        {efPlacesAuthentication, {pointer, records<PlaceAuthStatusRecord_g2_2>(counts.places)}, yes, optional, download, v2},
        {efGnssPlacesAuthentication, {pointer, records<GNSSAuthStatusADRecord_g2_2>(counts.gnssPlaces)}, yes, optional, download, v2},
        {efBorderCrossings, {pointer, records<CardBorderCrossingRecord_g2_2>(crossings)}, yes, optional, download, v2},
        {efLoadUnloadOperations, {pointer, records<CardLoadUnloadRecord_g2_2>(operations)}, yes, optional, download, v2},
        {efLoadTypeEntries, {pointer, records<CardLoadTypeEntryRecord_g2_2>(loadTypes)}, yes, optional, download, v2},
    };
    // clang-format on
}

/// @p table with @p rows behind its own.
inline void appendRows(EfTable& table, std::vector<EfRow> rows)
{
    table.rows.insert(table.rows.end(), rows.begin(), rows.end());
}

} // namespace scard::detail

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

// Columns of a row.
constexpr auto isSigned = Signing::Signed;
constexpr auto notSigned = Signing::Unsigned;
constexpr auto required = InImage::Required;
constexpr auto optional = InImage::Optional;
constexpr auto download = ReadAt::Download;
constexpr auto version2_2 = OnCards::Version2_2;

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
        {efIcc, {one<CardIccIdentification>()}, notSigned, optional, identification},
        {efIc, {one<CardIcIdentification>()}, notSigned, optional, identification},
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
    // clang-format off
    return {
        {efApplicationIdentificationV2, {one<ApplicationV2>()}, isSigned, required, download, version2_2},
        {efPlacesAuthentication, {pointer, records<PlaceAuthStatusRecord_g2_2>(counts.places)}, isSigned, optional, download, version2_2},
        {efGnssPlacesAuthentication, {pointer, records<GNSSAuthStatusADRecord_g2_2>(counts.gnssPlaces)}, isSigned, optional, download, version2_2},
        {efBorderCrossings, {pointer, records<CardBorderCrossingRecord_g2_2>(crossings)}, isSigned, optional, download, version2_2},
        {efLoadUnloadOperations, {pointer, records<CardLoadUnloadRecord_g2_2>(operations)}, isSigned, optional, download, version2_2},
        {efLoadTypeEntries, {pointer, records<CardLoadTypeEntryRecord_g2_2>(loadTypes)}, isSigned, optional, download, version2_2},
    };
    // clang-format on
}

/// The order of the download image: as the EFs are read, but the chip's files, EF_Application_Identification
/// and the certificates first.
inline std::vector<unsigned short> savingOrder(const std::vector<EfRow>& rows)
{
    std::vector<unsigned short> first;
    std::vector<unsigned short> others;
    for (const EfRow& row : rows) {
        const bool leads = row.readAt == ReadAt::Identification || row.fid == fidApplicationIdentification ||
                           row.fid >= fidCardCertificate;
        (leads ? first : others).push_back(row.fid);
    }
    first.insert(first.end(), others.begin(), others.end());
    return first;
}

/// @p table with @p rows behind its own.
inline void appendRows(EfTable& table, std::vector<EfRow> rows)
{
    table.rows.insert(table.rows.end(), rows.begin(), rows.end());
}

} // namespace scard::detail

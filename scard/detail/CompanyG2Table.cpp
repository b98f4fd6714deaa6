#include <scard/detail/CompanyG2Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/TableParts.h>
#include <scard/records/CompanyCard.h>

namespace scard::detail {

namespace {

EfTable makeTable()
{
    using Application = CompanyCardApplicationIdentification;
    using ApplicationV2 = CompanyCardApplicationIdentification_g2_v2;
    const RecordCount activities =
        SCARD_COUNT_FIELD(fidApplicationIdentification, Application, noOfCompanyActivityRecords);

    const Piece certificate = records<unsigned char>(certificateLength());
    const Piece pointer = one<UInt16>();

    // The card has no key to sign with in this application.
    constexpr auto no = Signing::Unsigned;
    constexpr auto required = InImage::Required;
    constexpr auto download = ReadAt::Download;
    constexpr auto v2 = OnCards::Version2_2;

    EfTable table;
    table.applicationName = secondGenerationApplication();
    // The records of this application carry the first generation's type.
    table.secondGeneration = false;
    table.counts = {
        {fidApplicationIdentification,
         "calcDataToRead(): Error reading SCardCompany G2 EF_Application_Identification:"},
        {fidApplicationIdentificationV2,
         "calcDataToRead(): Error reading SCardCompany G2 EF_Application_Identification_V2:"}};
    table.totalEntry = OwnEntry::Last;
    table.stepEntry = OwnEntry::Last;
    table.efFailure = EfFailure::RowsText;
    table.rows = chipRows();
    // clang-format off
    appendRows(table, {
        {efIdentification, {one<CompanyCard_EF_Identification>()}, no},
        {efApplicationIdentification, {one<Application>()}, no},
        {efMaCertificate, {certificate}, no},
        {efCaCertificate, {certificate}, no},
        {efLinkCertificate, {certificate}, no},
        {efCompanyActivityData, {pointer, records<CompanyActivityRecord>(activities)}, no},
        {efApplicationIdentificationV2, {one<ApplicationV2>()}, no, required, download, v2},
    });
    // clang-format on
    table.saveOrder = {
        fidIcc,
        fidIc,
        fidApplicationIdentification,
        fidCardCertificate,
        fidCaCertificate,
        fidLinkCertificate,
        fidIdentification,
        fidCompanyActivityData,
        fidApplicationIdentificationV2};
    return table;
}

} // namespace

const EfTable& companyG2Table()
{
    static const EfTable table = makeTable();
    return table;
}

} // namespace scard::detail

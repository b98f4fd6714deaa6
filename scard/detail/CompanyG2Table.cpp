#include <scard/detail/CompanyG2Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/TableParts.h>
#include <scard/records/CompanyCard.h>

namespace scard::detail {

namespace {

EfTable makeCompanyG2Table()
{
    using Application = CompanyCardApplicationIdentification;
    using ApplicationV2 = CompanyCardApplicationIdentification_g2_v2;
    const RecordCount activities =
        SCARD_COUNT_FIELD(fidApplicationIdentification, Application, noOfCompanyActivityRecords);

    const Piece certificate = records<unsigned char>(certificateLength());
    const Piece pointer = one<UInt16>();

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
    // The card has no key to sign with in this application.
    // clang-format off
    appendRows(table, {
        {efIdentification, {one<CompanyCard_EF_Identification>()}, notSigned},
        {efApplicationIdentification, {one<Application>()}, notSigned},
        {efMaCertificate, {certificate}, notSigned},
        {efCaCertificate, {certificate}, notSigned},
        {efLinkCertificate, {certificate}, notSigned},
        {efCompanyActivityData, {pointer, records<CompanyActivityRecord>(activities)}, notSigned},
        {efApplicationIdentificationV2, {one<ApplicationV2>()}, notSigned, required, download, version2_2},
    });
    // clang-format on
    table.saveOrder = savingOrder(table.rows);
    return table;
}

} // namespace

const EfTable& companyG2Table()
{
    static const EfTable table = makeCompanyG2Table();
    return table;
}

} // namespace scard::detail

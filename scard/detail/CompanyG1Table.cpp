#include <scard/detail/CompanyG1Table.h>

#include <scard/detail/ApplicationName.h>
#include <scard/detail/TableParts.h>
#include <scard/records/CompanyCard.h>

namespace scard::detail {

namespace {

EfTable makeCompanyG1Table()
{
    using Application = CompanyCardApplicationIdentification;
    const RecordCount activities =
        SCARD_COUNT_FIELD(fidApplicationIdentification, Application, noOfCompanyActivityRecords);

    const Piece certificate = records<unsigned char>(fixedCount(certificateBytesG1));
    const Piece pointer = one<UInt16>();

    EfTable table;
    table.applicationName = firstGenerationApplication();
    table.secondGeneration = false;
    table.counts = {
        {fidApplicationIdentification,
         "calcDataToRead(): Error reading SCardCompany G1 EF_Application_Identification:"}};
    table.totalEntry = OwnEntry::Last;
    table.stepEntry = OwnEntry::Last;
    table.efFailure = EfFailure::RowsText;
    table.rows = chipRows();
    // Without EF_Identification: reading it needs an authentication.
    // clang-format off
    appendRows(table, {
        {efApplicationIdentification, {one<Application>()}, isSigned},
        {efCardCertificate, {certificate}, notSigned},
        {efCaCertificate, {certificate}, notSigned},
        {efCompanyActivityData, {pointer, records<CompanyActivityRecord>(activities)}, isSigned},
    });
    // clang-format on
    table.saveOrder = savingOrder(table.rows);
    return table;
}

} // namespace

const EfTable& companyG1Table()
{
    static const EfTable table = makeCompanyG1Table();
    return table;
}

} // namespace scard::detail

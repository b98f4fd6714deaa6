#include <scard/SCardCompanyG1.h>

#include <scard/detail/CardApplication.h>
#include <scard/detail/CompanyG1Table.h>
#include <scard/detail/CompanyValues.h>
#include <scard/detail/ErrorBuilder.h>
#include <scard/detail/FileName.h>
#include <scard/records/Fid.h>

namespace scard {

struct Q_DECL_HIDDEN SCardCompanyG1::Private
{
    detail::CardApplication application{detail::companyG1Table()};
};

SCardCompanyG1::SCardCompanyG1() : SCardCompanyG1(SCardGeneric(0L, QDateTime(), RegionDDD)) {}

SCardCompanyG1::SCardCompanyG1(const SCardGeneric& card) : SCardGeneric(card), d(std::make_unique<Private>())
{}

SCardCompanyG1::~SCardCompanyG1() = default;

aux::Error SCardCompanyG1::calcDataToRead()
{
    aux::Error failure = SCardGeneric::calcDataToRead();
    if (!failure.isEmpty())
        return detail::withStep(
            failure, QStringLiteral("calcDataToRead() failed to call SCardGeneric::calcDataToRead()"));
    return d->application.calcDataToRead(*this);
}

aux::Error SCardCompanyG1::read()
{
    constructFilename(); // EF_ICC, which it is made of, was read by the identification
    return d->application.read(*this, [](unsigned short) {});
}

aux::Error SCardCompanyG1::saveToFile(QFile& file)
{
    return d->application.save(*this, file);
}

void SCardCompanyG1::forgetFirstApplication()
{
    d->application.clear();
}

void SCardCompanyG1::constructFilename()
{
    setFilename(
        detail::companyFileName(iccIdentification().cardExtendedSerialNumber, getDownloadTimestamp()));
}

std::vector<CompanyActivity> SCardCompanyG1::getCompanyActivities() const
{
    return detail::companyActivities(d->application.bytes(fidCompanyActivityData));
}

} // namespace scard

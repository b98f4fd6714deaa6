#include <scard/SCardCompanyG2.h>

#include <scard/detail/CardApplication.h>
#include <scard/detail/CompanyG2Table.h>
#include <scard/detail/CompanyValues.h>
#include <scard/detail/ErrorBuilder.h>
#include <scard/detail/RecordFields.h>
#include <scard/records/Fid.h>

namespace scard {

struct Q_DECL_HIDDEN SCardCompanyG2::Private
{
    detail::CardApplication application{detail::companyG2Table()};
};

SCardCompanyG2::SCardCompanyG2() : d(std::make_unique<Private>()) {}

SCardCompanyG2::SCardCompanyG2(const SCardGeneric& card)
    : SCardCompanyG1(card), d(std::make_unique<Private>())
{}

SCardCompanyG2::~SCardCompanyG2() = default;

aux::Error SCardCompanyG2::calcDataToRead()
{
    aux::Error failure = SCardCompanyG1::calcDataToRead();
    if (!failure.isEmpty())
        return detail::withStep(
            failure, QStringLiteral("calcDataToRead() failed to call SCardCompanyG1::calcDataToRead()"));
    return d->application.calcDataToRead(*this);
}

aux::Error SCardCompanyG2::read()
{
    forgetFirstApplication(); // it is read last, or not at all
    aux::Error failure = d->application.read(*this, [this](unsigned short fid) {
        if (fid == fidIdentification)
            announceHolder();
    });
    if (!failure.isEmpty())
        return failure;
    detail::discard("read() first application failed:", SCardCompanyG1::read());
    setDataValid(true);
    return {};
}

aux::Error SCardCompanyG2::saveToFile(QFile& file)
{
    return d->application.saveBehind([this, &file] { return SCardCompanyG1::saveToFile(file); }, *this, file);
}

CompanyCard_EF_Identification SCardCompanyG2::getCardIdentification() const
{
    return d->application.record<CompanyCard_EF_Identification>(fidIdentification);
}

QString SCardCompanyG2::getCardHolderName() const
{
    return detail::nameText(SCardCompanyG2::getCardIdentification().companyName);
}

std::vector<CompanyActivity> SCardCompanyG2::getCompanyActivitiesG2() const
{
    return detail::companyActivities(d->application.bytes(fidCompanyActivityData));
}

void SCardCompanyG2::announceHolder()
{
    const CompanyCard_EF_Identification identification = SCardCompanyG2::getCardIdentification();
    emitCardLanguage(reinterpret_cast<const char*>(identification.cardHolderPreferredLanguage));
    Q_EMIT cardHolderName(SCardCompanyG2::getCardHolderName());
}

} // namespace scard

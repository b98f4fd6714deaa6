#pragma once

#include <scard/Export.h>
#include <scard/records/CompanyCard.h>
#include <scard/SCardCompanyG1.h>

#include <QString>

#include <memory>
#include <vector>

namespace scard {

/// A company card of the second generation, version 2.2 included: it has a first-generation application
/// (TACHO) and a second-generation one (SMRDT), and a download takes both.
///
/// The second application is read before the first, and saved behind it; what becomes of the first does not
/// stop either. The card signs nothing in its second application, whose records have the first generation's
/// type in the file: so a file that this class has written is identified, and read, as one of the first.
///
/// A step's own entry stands behind the entries of what made it fail, with the id of the first of these.
class SCARD_EXPORT SCardCompanyG2 : public SCardCompanyG1
{
    Q_OBJECT

  public:
    /// An object on neither card nor image: read() fails, and there are no values.
    SCardCompanyG2();

    /// An object on the card or image of @p card, with what identification found.
    explicit SCardCompanyG2(const SCardGeneric& card);

    /// What was read is not copied: a further object is made of the same SCardGeneric.
    SCardCompanyG2(const SCardCompanyG2&) = delete;

    ~SCardCompanyG2() override;

    /// Adds up both applications; certificates by the length in their first bytes. Errors: "calcDataToRead()
    /// failed to call SCardCompanyG1::calcDataToRead()", "calcDataToRead(): Error reading SCardCompany G2
    /// EF_Application_Identification:" and, on a card of version 2.2, "calcDataToRead(): Error reading
    /// SCardCompany G2 EF_Application_Identification_V2:".
    aux::Error calcDataToRead() override;

    /// Reads both applications. Emits cardLanguage() and, with the company's name, cardHolderName() as soon
    /// as EF_Identification is read. Errors, of the second application only: "read() Select DF_Tachograph
    /// failed", "Error reading EF_Identification:", "Error reading EF_Application_Identification:", "Error
    /// reading EF_MA_Certificate:", "Error reading EF_CA_Certificate:", "Error reading EF_Link_Certificate:",
    /// "Error reading EF_Company_Activity:", "Error reading EF_Application_Identification_V2:".
    aux::Error read() override;

    /// Writes the first-generation records, as far as they were read, then those of the second application.
    /// Errors as SCardCompanyG1::saveToFile(): of the second application, or of the first when the disk took
    /// a record of it only in part, for behind such a record nobody finds the others.
    aux::Error saveToFile(QFile& file) override;

    /// @name What the second application holds
    /// Empty where the EF was not read.
    /// @{

    /// EF_Identification; all zero when it was not read.
    CompanyCard_EF_Identification getCardIdentification() const;

    /// The company's name, trimmed.
    QString getCardHolderName() const;

    /// EF_Company_Activity_Data, by time; a slot that the card never used (its type and time are 0) makes no
    /// item.
    std::vector<CompanyActivity> getCompanyActivitiesG2() const;

    /// @}

  private:
    void announceHolder();

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace scard

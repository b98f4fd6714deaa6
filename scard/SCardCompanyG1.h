#pragma once

#include <scard/CompanyCardValues.h>
#include <scard/Export.h>
#include <scard/SCardGeneric.h>

#include <memory>
#include <vector>

namespace scard {

/// A company card of the first generation (application TACHO).
///
/// A download runs calcDataToRead(), read() and saveToFile() in that order; nothing is written to the card.
/// EF_Identification is not read, for it needs an authentication: so no holder and no language are told. On
/// an image read() takes every dataset from its bytes, all must be there, and saveToFile() is refused.
///
/// A step's own entry stands behind the entries of what made it fail, with the id of the first of these.
///
/// The values are those of the last read(), also after the card is gone. Threads: as SCardGeneric.
class SCARD_EXPORT SCardCompanyG1 : public SCardGeneric
{
    Q_OBJECT

  public:
    /// An object on neither card nor image: read() fails, and there are no values.
    SCardCompanyG1();

    /// An object on the card or image of @p card, with what identification found.
    explicit SCardCompanyG1(const SCardGeneric& card);

    /// What was read is not copied: a further object is made of the same SCardGeneric.
    SCardCompanyG1(const SCardCompanyG1&) = delete;

    ~SCardCompanyG1() override;

    /// Reads the record count and adds up the download. Error: "calcDataToRead(): Error reading SCardCompany
    /// G1 EF_Application_Identification:".
    aux::Error calcDataToRead() override;

    /// Makes the file name and reads every EF and the signatures. Errors: "read() Select DF_Tachograph
    /// failed", "Error reading EF_Application_Identification:", "Error reading EF_Card_Certificate:", "Error
    /// reading EF_CA_Certificate:", "Error reading EF_Company_Activity:".
    aux::Error read() override;

    /// Writes the first-generation records to @p file, which must be open. Errors, id 0:
    /// "saveToFile(): File not opened", "saveToFile(): no valid data", "saveToFile(): not allowed on data
    /// read from file ", "saveToFile() Failed".
    aux::Error saveToFile(QFile& file) override;

    /// Makes the file name from the card's serial number and the download timestamp; the filename region
    /// does not matter.
    void constructFilename();

    /// EF_Company_Activity_Data of the first-generation application, by time; a slot that the card never
    /// used (its type and time are 0) makes no item.
    std::vector<CompanyActivity> getCompanyActivities() const;

  protected:
    /// Forgets what read() has read of the first-generation application.
    void forgetFirstApplication();

  private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace scard

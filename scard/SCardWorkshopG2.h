#pragma once

#include <scard/Export.h>
#include <scard/SCardWorkshopG1.h>

#include <memory>
#include <vector>

namespace scard {

/// A workshop card of the second generation, version 2.2 included: it has a first-generation application
/// (TACHO) and a second-generation one (SMRDT), and a download takes both.
///
/// Each step does the first-generation step before its own. What becomes of the first application does not
/// stop reading and saving the second. File name, holder and language come from the first application.
class SCARD_EXPORT SCardWorkshopG2 : public SCardWorkshopG1
{
    Q_OBJECT

  public:
    /// An object on neither card nor image: read() fails, and there are no values.
    SCardWorkshopG2();

    /// An object on the card or image of @p card, with what identification found.
    explicit SCardWorkshopG2(const SCardGeneric& card);

    /// What was read is not copied: a further object is made of the same SCardGeneric.
    SCardWorkshopG2(const SCardWorkshopG2&) = delete;

    ~SCardWorkshopG2() override;

    /// Adds up both applications; certificates by the length in their first bytes. Errors, each with what
    /// failed behind it: "calcDataToRead() failed to call SCardWorkshopG1::calcDataToRead()",
    /// "calcDataToRead(): Error reading SCardWorkshop G2 EF_Application_Identification:" and, on a card of
    /// version 2.2, "calcDataToRead(): Error reading SCardWorkshop G2 EF_Application_Identification_V2:".
    aux::Error calcDataToRead() override;

    /// Reads both applications. Errors: "read() Select DF_Tachograph failed" with the selection's entries
    /// behind it, or the reader's error unchanged, both of the second application only.
    aux::Error read() override;

    /// Writes the first-generation records, as far as they were read, then the second-generation ones.
    /// Errors as SCardWorkshopG1::saveToFile(): of the second application, or of the first when the disk took
    /// a record of it only in part, for behind such a record nobody finds the others.
    aux::Error saveToFile(QFile& file) override;

    /// Sets the count of calibrations since the last download to 0 in both applications; the first that
    /// fails ends it. Errors as SCardWorkshopG1::postDownloadTasks().
    aux::Error postDownloadTasks() override;

    /// @name What the second application holds
    /// Empty where the EF was not read. A slot that the card never used makes no item.
    /// @{

    /// EF_Identification; all zero when it was not read.
    WorkshopCard_EF_Identification getCardIdentificationG2() const;

    /// From EF_Calibration and EF_Card_Download, as they were before this download.
    CalibrationCounters getCalibrationCountersG2() const;

    /// EF_Calibration by the time after each calibration.
    std::vector<Calibration> getCalibrationsG2() const;

    /// EF_Calibration_Add_Data by the time before each calibration; a slot that was never used has no time
    /// and vehicle. Empty before version 2.2.
    std::vector<CalibrationAddData> getCalibrationAddData() const;

    /// @}

  private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace scard

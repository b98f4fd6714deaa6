#pragma once

#include <scard/Export.h>
#include <scard/records/WorkshopCard.h>
#include <scard/SCardGeneric.h>
#include <scard/WorkshopCardValues.h>

#include <QString>

#include <memory>
#include <vector>

namespace scard {

/// A workshop card of the first generation (application TACHO).
///
/// A download runs calcDataToRead(), read(), saveToFile(), postDownloadTasks() in that order. On an image
/// read() takes every dataset from its bytes, certificates and EF_Card_Download may be missing there,
/// saveToFile() is refused and postDownloadTasks() has nothing to do.
///
/// The values are those of the last read(), also after the card is gone. Threads: as SCardGeneric.
class SCARD_EXPORT SCardWorkshopG1 : public SCardGeneric
{
    Q_OBJECT

  public:
    /// An object on neither card nor image: read() fails, and there are no values.
    SCardWorkshopG1();

    /// An object on the card or image of @p card, with what identification found.
    explicit SCardWorkshopG1(const SCardGeneric& card);

    /// What was read is not copied: a further object is made of the same SCardGeneric.
    SCardWorkshopG1(const SCardWorkshopG1&) = delete;

    ~SCardWorkshopG1() override;

    /// Reads the record counts and adds up the download. Error: "calcDataToRead(): Error reading
    /// SCardWorkshop G1 EF_Application_Identification:" with the failure's id and its entries behind it.
    aux::Error calcDataToRead() override;

    /// Reads every EF and the signatures. Emits cardLanguage() and cardHolderName() and makes the file name
    /// as soon as EF_Identification is read. Errors: "read() Select DF_Tachograph failed" with the
    /// selection's entries behind it, or the reader's error unchanged; the debug stream says which EF.
    aux::Error read() override;

    /// Writes the first-generation records to @p file, which must be open. Errors, id 0:
    /// "saveToFile(): File not opened", "saveToFile(): no valid data", "saveToFile(): not allowed on data
    /// read from file ", "saveToFile() Failed" with the writer's entries behind it.
    aux::Error saveToFile(QFile& file) override;

    /// Sets the card's count of calibrations since the last download to 0. Errors: "read() Select
    /// DF_Tachograph failed" with the selection's entries behind it, or resetCalibrationsSinceDownload()'s.
    aux::Error postDownloadTasks() override;

    /// Makes the file name from the identification and the download timestamp by the filename region.
    void constructFilename();

    /// Writes 0 to EF_Card_Download (0509) of the selected application; this object keeps what it read.
    /// Errors: "updateLastCardDownload(): no valid data" (0) before a complete read(),
    /// "updateLastCardDownload() writeTo() Failed: ID 50e" with the write's id and its entries behind it.
    aux::Error resetCalibrationsSinceDownload();

    /// @name What the first-generation application holds
    /// Empty where the EF was not read.
    /// @{

    /// EF_Identification; all zero when it was not read.
    WorkshopCard_EF_Identification getCardIdentification() const;

    /// First names, ", ", surname, both trimmed.
    QString getCardHolderName() const;

    /// From EF_Calibration and EF_Card_Download, as they were before this download.
    CalibrationCounters getCalibrationCounters() const;

    /// EF_Calibration by the time after each calibration, those whose time was never set first; a slot that
    /// the card never used (no purpose, time and vehicle) makes no item.
    std::vector<Calibration> getCalibrations() const;

    /// @}

  private:
    void announceHolder();

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace scard

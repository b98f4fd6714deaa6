#pragma once

#include <scard/Export.h>
#include <scard/SCardDriverG1.h>

#include <QString>

#include <memory>
#include <vector>

namespace scard {

/// A driver card of the second generation, version 2.2 included: it has a first-generation application
/// (TACHO) and a second-generation one (SMRDT), and a download takes both.
///
/// Each step does the first-generation step before its own. What becomes of the first application does not
/// stop reading and saving the second. The lists and figures of SCardDriverG1 answer from the first
/// application; the lists of the second have getters of their own, with G2 in their names.
class SCARD_EXPORT SCardDriverG2 : public SCardDriverG1
{
    Q_OBJECT

  public:
    /// One vehicle used, with the number that only second-generation cards keep.
    struct _VEHICLE_USAGE_INFO_G2 : _VEHICLE_USAGE_INFO
    {
        QString vehicleIdentificationNumber; ///< trimmed
    };

    /// An object on neither card nor image: read() fails, and there are no values.
    SCardDriverG2();

    /// An object on the card or image of @p card, with what identification found.
    explicit SCardDriverG2(const SCardGeneric& card);

    /// What was read is not copied: a further object is made of the same SCardGeneric.
    SCardDriverG2(const SCardDriverG2&) = delete;

    ~SCardDriverG2() override;

    /// Adds up both applications; certificates by the length in their first bytes. Errors, each with what
    /// failed behind it: "calcDataToRead() failed to call SCardDriverG1::calcDataToRead()",
    /// "calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification:" and, on a card of
    /// version 2.2, "calcDataToRead(): Error reading SCardDriver G2 EF_Application_Identification_V2:".
    aux::Error calcDataToRead() override;

    /// Reads both applications; emits holder and language and makes the file name while it reads the first.
    /// Errors: "read() Select DF_Tachograph failed" with the selection's entries behind it, or the reader's
    /// error unchanged, both of the second application only.
    aux::Error read() override;

    /// Writes the first-generation records, as far as they were read, then the second-generation ones.
    /// Errors as SCardDriverG1::saveToFile(): of the second application, or of the first when the disk took
    /// a record of it only in part, for behind such a record nobody finds the others.
    aux::Error saveToFile(QFile& file) override;

    /// Records on the card that it was downloaded now, in both applications; the first that fails ends it.
    /// Errors as SCardDriverG1::postDownloadTasks().
    aux::Error postDownloadTasks() override;

    /// @name From the second application, or from the first where the second was not read
    /// @{

    /// EF_Identification; all zero when neither was read.
    DriverCard_EF_Identification getCardIdentification() override;

    /// When the card was last downloaded before this download, as SCardDriverG1::getLastCardDownload().
    QDateTime getLastCardDownload() override;

    /// First names, ", ", surname, both trimmed.
    QString getCardHolderName() override;

    /// @}

    /// @name Builders of the second application's lists
    /// By the rules and with the errors of the first; like those, at any time. The lists come out by time.
    /// @{

    aux::Error buildDailyActivityList() override; ///< For getActivitiesG2().
    void buildUsedVehiclesList() override;        ///< For getVehiclesUsedG2().
    void buildEventList() override;               ///< For getEventsG2().
    void buildFaultList() override;               ///< For getFaultsG2().

    /// @}

    /// @name What the second application holds
    /// Empty where the EF was not read. Lists by time; items of the same time may come in any order, and a
    /// slot that the card never used (its time is 0) makes no item.
    /// @{

    /// Days of EF_Driver_Activity_Data, as the last builder call made them.
    std::vector<_DAILY_ACTIVITIES> getActivitiesG2() const;

    /// EF_Vehicles_Used, as the last builder call made it; by first use.
    std::vector<_VEHICLE_USAGE_INFO_G2> getVehiclesUsedG2() const;

    /// EF_EventsData, all eleven kinds, as the last builder call made it; by begin.
    std::vector<_EVENT> getEventsG2() const;

    /// EF_FaultsData, as the last builder call made it; by begin.
    std::vector<_FAULT> getFaultsG2() const;

    /// EF_Places, each with its position, and on cards of version 2.2 the position's authentication.
    std::vector<Place> getPlacesG2() const;

    /// EF_Specific_Conditions.
    std::vector<SpecificCondition> getSpecificConditionsG2() const;

    /// EF_Current_Usage.
    CurrentUse getCurrentUseG2() const;

    /// EF_Control_Activity_Data.
    ControlActivity getControlActivityG2() const;

    /// EF_Driving_License_Info.
    DrivingLicence getDrivingLicenceG2() const;

    /// EF_Vehicle_Units_Used.
    std::vector<VehicleUnit> getVehicleUnits() const;

    /// EF_GNSS_Places, and on cards of version 2.2 the authentication of each position.
    std::vector<GnssPlace> getGnssPlaces() const;

    /// EF_Border_Crossing; empty before version 2.2.
    std::vector<BorderCrossing> getBorderCrossings() const;

    /// EF_Load_Unload_Operations; empty before version 2.2.
    std::vector<LoadUnloadOperation> getLoadUnloadOperations() const;

    /// EF_Load_Type_Entries; empty before version 2.2.
    std::vector<LoadTypeEntry> getLoadTypeEntries() const;

    /// @}

  private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace scard

#pragma once

#include <scard/DriverCardValues.h>
#include <scard/Export.h>
#include <scard/records/DriverCard.h>
#include <scard/SCardGeneric.h>

#include <QDate>
#include <QDateTime>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace scard {

/// A driver card of the first generation (application TACHO).
///
/// A download runs calcDataToRead(), read(), saveToFile(), postDownloadTasks() in that order. On an
/// image read() takes every dataset from its bytes, certificates and the like may be missing there,
/// saveToFile() is refused and postDownloadTasks() has nothing to do.
///
/// The values are those of the last read(), also after the card is gone. Threads: as SCardGeneric; getters
/// that are not const sort their list.
class SCARD_EXPORT SCardDriverG1 : public SCardGeneric
{
    Q_OBJECT

  public:
    /// One activity period of a day (ActivityChangeInfo).
    struct _DAILY_ITEM
    {
        std::uint16_t start;         ///< minute of the day
        std::uint16_t duration;      ///< minutes to the next period's start, modulo 65,536; 0 for the last
        std::uint32_t drivingStatus; ///< card inserted: 0 single, 1 crew; not inserted: 0 unknown, 1 known
        std::uint32_t cardStatus;    ///< 0 inserted, 1 not inserted
        std::uint32_t activity;      ///< 0 break or rest, 1 availability, 2 work, 3 driving
        std::uint32_t slot;          ///< 0 driver, 1 co-driver
    };

    /// One day with its periods (CardActivityDailyRecord); all sums in minutes.
    struct _DAILY_ACTIVITIES
    {
        QDateTime date;  ///< the day's record date, 00:00 UTC, as local time; toUTC() gives the card's day
        int work = 0;    ///< minutes
        int rest = 0;    ///< minutes, breaks among them
        int driving = 0; ///< minutes
        int availability = 0; ///< minutes
        int unknown = 0;      ///< minutes before the first period, and with the card out and nothing entered
        std::vector<_DAILY_ITEM> items; ///< in the card's order, ascending in time
    };

    /// One vehicle used, on one day or a part of it (CardVehicleRecord).
    struct _VEHICLE_USAGE_INFO
    {
        QDateTime firstUse;              ///< local time
        QDateTime lastUse;               ///< local time
        std::uint32_t odometerBegin = 0; ///< km
        std::uint32_t odometerEnd = 0;   ///< km
        QString registration;            ///< registration number, trimmed
    };

    /// One event (CardEventRecord).
    struct _EVENT
    {
        std::int32_t type = 0; ///< EventFaultType: 1 to 15 general, 16 and above security breach attempts
        QDateTime begin;       ///< local time; null when not known
        QDateTime end;         ///< local time; null when not known
        std::int32_t reserved1 = 0; ///< always 0
        std::int32_t reserved2 = 0; ///< always 0
        QString registration;       ///< registration number, trimmed
    };

    /// One fault (CardFaultRecord).
    struct _FAULT
    {
        std::int32_t type = 0;      ///< EventFaultType: 48 to 63 recording equipment, 64 to 79 card
        QDateTime begin;            ///< local time; null when not known
        QDateTime end;              ///< local time; null when not known
        std::int32_t reserved1 = 0; ///< always 0
        std::int32_t reserved2 = 0; ///< always 0
        QString registration;       ///< registration number, trimmed
    };

    /// An object on neither card nor image: read() fails, and there are no values.
    SCardDriverG1();

    /// An object on the card or image of @p card, with what identification found.
    explicit SCardDriverG1(const SCardGeneric& card);

    /// What was read is not copied: a further object is made of the same SCardGeneric.
    SCardDriverG1(const SCardDriverG1&) = delete;

    ~SCardDriverG1() override;

    /// Reads the record counts and adds up the download. A card that has no first-generation
    /// application adds nothing. Errors: the reader's, with "calcDataToRead(): Error reading SCardDriver
    /// G1 EF_Application_Identification:" added.
    aux::Error calcDataToRead() override;

    /// Reads every EF and the signatures. Emits cardLanguage() and cardHolderName() and makes the file
    /// name as soon as EF_Identification is read, and builds the lists when all is read that an image must
    /// have. Errors: "read() Select DF_Tachograph failed" with the selection's entries behind it, or the
    /// reader's error unchanged; the debug stream says which EF.
    aux::Error read() override;

    /// Writes the first-generation records to @p file, which must be open. Errors, id 0:
    /// "saveToFile(): File not opened", "saveToFile(): no valid data", "saveToFile(): not allowed on data
    /// read from file ", "saveToFile() Failed" with the writer's entries behind it.
    aux::Error saveToFile(QFile& file) override;

    /// Records on the card that it was downloaded now. Errors: "read() Select DF_Tachograph failed" with
    /// the selection's entries behind it, or updateLastCardDownload()'s.
    aux::Error postDownloadTasks() override;

    /// EF_Identification; all zero when it was not read.
    virtual DriverCard_EF_Identification getCardIdentification();

    /// When the card was last downloaded before this download, local time (EF_Card_Download). 1970-01-01
    /// 00:00 UTC when it never was, or the EF was not read.
    virtual QDateTime getLastCardDownload();

    /// First names, ", ", surname, both trimmed.
    virtual QString getCardHolderName();

    /// @name Lists for the host
    /// Built by read(). Each getter sorts its list by time and returns a copy; items of the same time may
    /// come in any order. Empty before a read().
    /// @{

    virtual std::vector<_DAILY_ACTIVITIES> getActivities();     ///< Days, by date.
    virtual std::vector<_VEHICLE_USAGE_INFO> getVehiclesUsed(); ///< Vehicles, by first use.
    virtual std::vector<_EVENT> getEvents();                    ///< Events, by begin.
    virtual std::vector<_FAULT> getFaults();                    ///< Faults, by begin.

    /// @}

    /// @name Builders of the lists
    /// They work on what was read, at any time. A slot that the card never used makes no item.
    /// @{

    /// Walks the cyclic activity buffer from the oldest day to the newest, in the card's order. The minutes
    /// before a day's first change count as unknown, those behind its last change are not counted.
    /// The walk ends after as many days as fit the buffer, and with the day whose periods make the list
    /// hold 1,048,576 of them or more.
    /// Errors, id 0: "buildDailyActivityList: Invalid activityStructureLength" (the list stays as it was),
    /// "buildDailyActivityList: Invalid activityRecordLength" (the days before stay in the list).
    virtual aux::Error buildDailyActivityList();

    /// From EF_Vehicles_Used, in slot order; a record whose last use is 0 is an unused slot.
    virtual void buildUsedVehiclesList();

    /// From EF_EventsData, group by group; a record whose type is 0 is an unused slot.
    virtual void buildEventList();

    /// From EF_FaultsData, likewise.
    virtual void buildFaultList();

    /// @}

    /// Makes the file name from the identification and the download timestamp by the filename region.
    void constructFilename();

    /// Writes the current time to EF_Card_Download of the selected application. Errors:
    /// "updateLastCardDownload(): no valid data" (0) before a complete read(), "updateLastCardDownload()
    /// writeTo() Failed: ID 50e" with the write's id and its entries behind it.
    aux::Error updateLastCardDownload();

    /// @name Figures of a day
    /// From the list of days; a day belongs to the calendar date of its local time. The remaining times are
    /// sums over what is on the card, in minutes (days where it says so), and no verdict by the rules for
    /// drivers. Their numbers are those of Regulation (EC) No 561/2006.
    /// @{

    /// The minutes of the first day of that date; false, and 0 everywhere, when there is none.
    /// @param      date         which day
    /// @param[out] work         as in _DAILY_ACTIVITIES
    /// @param[out] rest         likewise
    /// @param[out] driving      likewise
    /// @param[out] availability likewise
    /// @param[out] unknown      likewise
    /// @return                  true when there is such a day
    bool
    getDayStatistics(QDate date, int& work, int& rest, int& driving, int& availability, int& unknown) const;

    /// Date of the list's first day, the oldest; null when the list is empty.
    QDateTime getDateOfFirstActivity() const;

    /// Date of the list's last day, the newest; null when the list is empty.
    QDateTime getDateOfLastActivity() const;

    /// 540 minutes less the day's work and driving; negative when there was more.
    int getRemainingDrivingTimeOfDay(QDate date) const;

    /// 3360 minutes less work and driving of the seven days that end with @p date; at least 0.
    int getRemainingDrivingTimeOfWeek(QDate date) const;

    /// Days: 2 less the number of those seven with more than 540 minutes of work and driving; at least 0.
    int getRemainingExtendedDrivingTimeOfWeek(QDate date) const;

    /// Days: 3 less the number of those seven that leave less than 660 minutes beside work and driving; at
    /// least 0.
    int getRemainingReducedRestTimeOfWeek(QDate date) const;

    /// 270 minutes less the day's work and driving since the last breaks of more than 44 minutes in sum; at
    /// least 0. The day's last period has no end yet and does not count.
    int getTimeToNextBreak(QDate date) const;

    /// @}

    /// @name What else the first-generation application holds
    /// Empty where the EF was not read. Lists by time; a slot that the card never used (its time is 0) makes
    /// no item.
    /// @{

    /// EF_Places.
    std::vector<Place> getPlaces() const;

    /// EF_Specific_Conditions.
    std::vector<SpecificCondition> getSpecificConditions() const;

    /// EF_Current_Usage.
    CurrentUse getCurrentUse() const;

    /// EF_Control_Activity_Data.
    ControlActivity getControlActivity() const;

    /// EF_Driving_License_Info.
    DrivingLicence getDrivingLicence() const;

    /// @}

  private:
    void announceHolder();

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace scard

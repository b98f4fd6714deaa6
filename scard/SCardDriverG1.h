#pragma once

#include <scard/Export.h>
#include <scard/records/DriverCard.h>
#include <scard/SCardGeneric.h>

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
class SCARD_EXPORT SCardDriverG1 : public SCardGeneric
{
    Q_OBJECT

  public:
    /// One activity period of a day.
    struct _DAILY_ITEM
    {
        std::uint16_t start;         ///< minute of the day
        std::uint16_t duration;      ///< minutes to the next period's start; 0 for the day's last
        std::uint32_t drivingStatus; ///< card inserted: 0 single, 1 crew; not inserted: 0 unknown, 1 known
        std::uint32_t cardStatus;    ///< 0 inserted, 1 not inserted
        std::uint32_t activity;      ///< 0 break or rest, 1 availability, 2 work, 3 driving
        std::uint32_t slot;          ///< 0 driver, 1 co-driver
    };

    /// One day with its periods; all sums in minutes.
    struct _DAILY_ACTIVITIES
    {
        QDateTime date; ///< the day's record date, local time
        int work = 0;
        int rest = 0;
        int driving = 0;
        int availability = 0;
        int unknown = 0;
        std::vector<_DAILY_ITEM> items;
    };

    /// One vehicle used.
    struct _VEHICLE_USAGE_INFO
    {
        QDateTime firstUse;              ///< local time
        QDateTime lastUse;               ///< local time
        std::uint32_t odometerBegin = 0; ///< km
        std::uint32_t odometerEnd = 0;   ///< km
        QString registration;            ///< registration number, trimmed
    };

    /// One event.
    struct _EVENT
    {
        std::int32_t type = 0;
        QDateTime begin; ///< local time; null when not known
        QDateTime end;   ///< local time; null when not known
        std::int32_t reserved1 = 0;
        std::int32_t reserved2 = 0;
        QString registration; ///< registration number, trimmed
    };

    /// One fault.
    struct _FAULT
    {
        std::int32_t type = 0;
        QDateTime begin; ///< local time; null when not known
        QDateTime end;   ///< local time; null when not known
        std::int32_t reserved1 = 0;
        std::int32_t reserved2 = 0;
        QString registration; ///< registration number, trimmed
    };

    SCardDriverG1();

    /// An object on the card or image of @p card, with what identification found.
    explicit SCardDriverG1(const SCardGeneric& card);
    SCardDriverG1(const SCardDriverG1&) = delete;
    ~SCardDriverG1() override;

    /// Reads the record counts and adds up the download. A card that has no first-generation
    /// application adds nothing. Errors: the reader's, with "calcDataToRead(): Error reading SCardDriver
    /// G1 EF_Application_Identification:" added.
    aux::Error calcDataToRead() override;

    /// Reads every EF and the signatures. Emits cardLanguage() and cardHolderName() and makes the file
    /// name as soon as EF_Identification is read. Errors: "read() Select DF_Tachograph failed" with the
    /// selection's entries behind it, or the reader's error unchanged; the debug stream says which EF.
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

    /// When the card was last downloaded before this download, local time.
    virtual QDateTime getLastCardDownload();

    /// First names, ", ", surname, both trimmed.
    virtual QString getCardHolderName();

    // Lists for the host. They are not built yet: the builders do nothing, the getters give empty lists.

    virtual std::vector<_DAILY_ACTIVITIES> getActivities();
    virtual std::vector<_VEHICLE_USAGE_INFO> getVehiclesUsed();
    virtual std::vector<_EVENT> getEvents();
    virtual std::vector<_FAULT> getFaults();

    virtual aux::Error buildDailyActivityList();
    virtual void buildUsedVehiclesList();
    virtual void buildEventList();
    virtual void buildFaultList();

    /// Makes the file name from the identification and the download timestamp by the filename region.
    void constructFilename();

    /// Writes the current time to EF_Card_Download of the selected application. Errors:
    /// "updateLastCardDownload(): no valid data" (0) before a complete read(), "updateLastCardDownload()
    /// writeTo() Failed: ID 50e" with the write's id and its entries behind it.
    aux::Error updateLastCardDownload();

  private:
    void announceHolder();

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace scard

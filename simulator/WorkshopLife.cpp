#include "WorkshopLife.h"

#include "CommonContents.h"
#include "TimeReal.h"

#include <algorithm>
#include <utility>

namespace sim {

namespace {

constexpr std::uint32_t VisitStream = 48;
constexpr std::uint32_t FittedVehicleStream = 49;
constexpr std::uint32_t DayStream = 50;

/// Visits of which the test drives are told.
constexpr std::size_t ToldVisits = 24;

// Minutes of a day in UTC.
constexpr int EarliestVisitBegin = 390;
constexpr int LatestVisitEnd = 990;

/// In minutes of its day; the calibration takes place in the work before the first drive.
struct Visit
{
    std::uint32_t day = 0;
    /// TimeReal
    std::uint32_t calibration = 0;
    CalibrationPurpose purpose = CalibrationPurpose::PeriodicInspection;
    int begin = 0;
    int firstDrive = 0;
    int halt = 0;
    int secondDrive = 0;
    int closing = 0;
    int end = 0;
};

/// An entry or another time needs no test drive.
bool isDriven(CalibrationPurpose purpose)
{
    return isOfFirstGeneration(purpose);
}

CalibrationPurpose choosePurpose(Random& random)
{
    const int choice = random.between(0, 99);
    if (choice < 62) {
        return CalibrationPurpose::PeriodicInspection;
    }
    if (choice < 78) {
        return CalibrationPurpose::Installation;
    }
    if (choice < 86) {
        return CalibrationPurpose::FirstInstallation;
    }
    if (choice < 91) {
        return CalibrationPurpose::Activation;
    }
    return choice < 95 ? CalibrationPurpose::RegistrationEntry : CalibrationPurpose::TimeAdjustment;
}

/// The visits of a workshop from the newest into the past.
class Diary
{
  public:
    Diary(std::uint32_t seed, std::uint32_t lastCalibration) : m_random(seed, VisitStream)
    {
        // Both generations know its purpose.
        add(lastCalibration, CalibrationPurpose::PeriodicInspection);
    }

    void addEarlier()
    {
        const CalibrationPurpose purpose = choosePurpose(m_random);
        const Visit& later = m_visits.back();
        const int latestEnd = later.begin - m_random.between(10, 60);
        const bool sameDay = latestEnd - LongestVisit >= EarliestVisitBegin && m_random.chance(65);
        std::uint32_t day = sameDay ? later.day : workingDayBefore(later.day);
        if (!sameDay && m_random.chance(8)) {
            day = workingDayBefore(day);
        }
        const int end = sameDay ? latestEnd : m_random.between(LatestVisitEnd - 90, LatestVisitEnd);
        const auto minute = static_cast<std::uint32_t>(end - LongestAfter);
        add(day + minute * SecondsPerMinute + m_random.below(SecondsPerMinute), purpose);
    }

    const std::vector<Visit>& visits() const { return m_visits; }

  private:
    static constexpr int LongestBefore = 30;
    static constexpr int LongestAfter = 60;
    static constexpr int LongestVisit = LongestBefore + LongestAfter;

    void add(std::uint32_t calibration, CalibrationPurpose purpose)
    {
        Visit visit;
        visit.calibration = calibration;
        visit.purpose = purpose;
        visit.day = calibration - calibration % SecondsPerDay;
        const auto minute = static_cast<int>(calibration % SecondsPerDay / SecondsPerMinute);
        visit.begin = minute - m_random.between(10, LongestBefore);
        visit.firstDrive = minute + m_random.between(4, 10);
        visit.halt = visit.firstDrive + m_random.between(6, 14);
        visit.secondDrive = visit.halt + m_random.between(4, 12);
        visit.closing = visit.secondDrive + m_random.between(6, 14);
        visit.end = visit.closing + m_random.between(3, 9);
        m_visits.push_back(visit);
    }

    Random m_random;
    /// Newest first.
    std::vector<Visit> m_visits;
};

struct Tyre
{
    const char* size;
    int circumference;
};

const std::vector<Tyre>& tyres()
{
    static const std::vector<Tyre> all = {{"315/70 R 22.5", 3110}, {"315/80 R 22.5", 3280},
                                          {"295/80 R 22.5", 3180}, {"295/60 R 22.5", 2840},
                                          {"275/70 R 22.5", 2950}, {"385/55 R 22.5", 3040}};
    return all;
}

/// Finds out what there is to know about a vehicle that is brought.
class Fitter
{
  public:
    Fitter(std::uint32_t seed, std::uint8_t nation) : m_random(seed, FittedVehicleStream), m_nation(nation) {}

    Calibration calibrate(const Visit& visit)
    {
        Calibration done;
        done.purpose = visit.purpose;
        done.identity = makeVehicleIdentity(m_random);
        fillVehicle(done);
        fillMeasurements(done);
        fillTimes(done, visit.calibration);
        fillParts(done, visit.calibration);
        return done;
    }

  private:
    void fillVehicle(Calibration& done)
    {
        const NationProfile home = nationProfile(m_nation);
        done.vehicle.nation = m_random.chance(12) ? m_random.pick(home.neighbours) : m_nation;
        done.vehicle.plate = makePlate(nationProfile(done.vehicle.nation).plate, m_random);
        done.vehicle.blockCounter = m_random.between(20, 4000);
        const bool isNew = done.purpose == CalibrationPurpose::Activation ||
                           done.purpose == CalibrationPurpose::FirstInstallation;
        const int km = isNew ? m_random.between(5, 400) : m_random.between(30000, 900000);
        done.newOdometer = static_cast<std::uint32_t>(km);
        // A vehicle unit just built in has counted little.
        const bool builtIn = isNew || done.purpose == CalibrationPurpose::Installation;
        done.oldOdometer = builtIn ? m_random.below(5) : done.newOdometer;
        done.vehicle.odometer = done.newOdometer;
        done.load = m_random.chance(15) ? Load::Passengers : Load::Goods;
        done.country = m_nation;
    }

    void fillMeasurements(Calibration& done)
    {
        static const std::vector<std::uint8_t> speeds = {85, 88, 89, 90};
        const int characteristic = m_random.between(7650, 8350);
        done.characteristic = static_cast<std::uint16_t>(characteristic);
        done.constant = static_cast<std::uint16_t>(characteristic + m_random.between(-12, 12));
        const Tyre& tyre = m_random.pick(tyres());
        done.tyreSize = tyre.size;
        done.tyreCircumference =
            static_cast<std::uint16_t>(8 * tyre.circumference + m_random.between(-160, 160));
        done.speed = m_random.pick(speeds);
    }

    void fillTimes(Calibration& done, std::uint32_t time)
    {
        done.newTime = time;
        const bool clockWasOff = done.purpose == CalibrationPurpose::TimeAdjustment;
        const auto off =
            static_cast<std::uint32_t>(clockWasOff ? m_random.between(300, 1500) : m_random.between(1, 90));
        done.oldTime = m_random.chance(50) ? time - off : time + off;
        done.positionTime = time - static_cast<std::uint32_t>(m_random.between(1, 120));
        Date next = dateOf(time);
        next.year += 2;
        next.day = std::min(next.day, 28);
        done.next = timeOf(next);
        if (!isOfFirstGeneration(done.purpose)) {
            // No inspection: that of the last one stays.
            done.next -= static_cast<std::uint32_t>(m_random.between(20, 700)) * SecondsPerDay;
        }
    }

    Bytes serialOf(Equipment equipment, std::uint32_t time)
    {
        const std::uint32_t made =
            time - static_cast<std::uint32_t>(m_random.between(20, 1500)) * SecondsPerDay;
        const std::uint32_t serial = m_random.below(100000000);
        return makeExtendedSerialNumber(serial, made, equipment);
    }

    void fillParts(Calibration& done, std::uint32_t time)
    {
        static const std::vector<Equipment> sealed = {
            Equipment::VehicleUnit, Equipment::MotionSensor, Equipment::GnssFacility, Equipment::RemoteModule,
            Equipment::Plaque};
        done.unitPartNumber = "SIM-" + m_random.digits(4) + "-";
        done.unitPartNumber += m_random.digits(7);
        done.unitSerial = serialOf(Equipment::VehicleUnit, time);
        done.sensorSerial = serialOf(Equipment::MotionSensor, time);
        done.gnssSerial = serialOf(Equipment::GnssFacility, time);
        done.remoteSerial = serialOf(Equipment::RemoteModule, time);
        done.ability = m_random.chance(10) ? 1 : 0;
        const auto seals = m_random.below(static_cast<std::uint32_t>(sealed.size()) + 1);
        for (std::uint32_t i = 0; i < seals; ++i) {
            done.seals.push_back({sealed[i], "SM", m_random.digits(8)});
        }
    }

    Random m_random;
    std::uint8_t m_nation;
};

/// The test drives, from the oldest day told to the newest.
class TestDrives
{
  public:
    TestDrives(std::uint32_t seed, std::uint8_t nation)
        : m_random(seed, DayStream), m_nation(nation), m_region(makeRegion(nation, m_random)),
          m_presence(m_random.between(5, 200))
    {}

    /// `visits` ascend in time, as `calibrations` do, and are of one day at least.
    void tell(const std::vector<Visit>& visits, const std::vector<Calibration>& calibrations)
    {
        std::size_t next = 0;
        for (std::uint32_t date = visits.front().day; date <= visits.back().day; date += SecondsPerDay) {
            Day day;
            day.date = date;
            day.presence = m_presence;
            day.words.push_back(activity::NotInserted);
            m_usage.days.push_back(day);
            const std::size_t first = next;
            while (next < visits.size() && visits[next].day == date) {
                visit(visits[next], calibrations[next]);
                ++next;
            }
            if (next > first) {
                m_usage.days.back().presence = ++m_presence;
                notePlace(PlaceEntry::Begin, m_usage.uses[first].begin, m_usage.uses[first].odometerBegin);
                notePlace(PlaceEntry::End, m_usage.uses.back().end, m_usage.uses.back().odometerEnd);
            }
        }
    }

    DriverLife take() { return std::move(m_usage); }

  private:
    std::uint32_t at(int minute) const
    {
        return m_usage.days.back().date + static_cast<std::uint32_t>(minute) * SecondsPerMinute;
    }

    void word(std::uint16_t status, int minute)
    {
        m_usage.days.back().words.push_back(static_cast<std::uint16_t>(status | minute));
    }

    void notePlace(PlaceEntry entry, std::uint32_t time, std::uint32_t odometer)
    {
        m_usage.places.push_back({time, entry, m_nation, m_region, odometer});
    }

    void drive(int begin, int end)
    {
        const auto km = static_cast<std::uint32_t>((end - begin) * m_random.between(35, 70) / 60);
        word(activity::Driving, begin);
        m_usage.stretches.push_back({at(begin), at(end), m_odometer, m_odometer + km, true});
        m_odometer += km;
        m_usage.days.back().distance += km;
    }

    void visit(const Visit& visit, const Calibration& calibration)
    {
        Vehicle vehicle = calibration.vehicle;
        vehicle.lastDay = visit.day;
        VehicleUse use;
        use.vehicle = m_usage.fleet.size();
        use.blockCounter = vehicle.blockCounter;
        use.begin = at(visit.begin) + m_random.below(SecondsPerMinute);
        use.end = at(visit.end) + m_random.below(SecondsPerMinute);
        use.odometerBegin = calibration.newOdometer;
        m_odometer = calibration.newOdometer;

        word(activity::Work, visit.begin);
        m_usage.stops.push_back({at(visit.begin), at(visit.firstDrive), m_odometer});
        if (isDriven(visit.purpose)) {
            testDrive(visit);
        }
        word(activity::NotInserted | activity::Work, visit.end);
        use.odometerEnd = m_odometer;
        vehicle.odometer = m_odometer;
        m_usage.fleet.push_back(vehicle);
        m_usage.uses.push_back(use);
    }

    void testDrive(const Visit& visit)
    {
        const bool outOfScope = m_random.chance(30);
        if (outOfScope) {
            m_usage.conditions.push_back({at(visit.firstDrive), Condition::OutOfScopeBegin});
        }
        drive(visit.firstDrive, visit.halt);
        word(activity::Work, visit.halt);
        drive(visit.secondDrive, visit.closing);
        word(activity::Work, visit.closing);
        if (outOfScope) {
            m_usage.conditions.push_back({at(visit.closing), Condition::OutOfScopeEnd});
        }
    }

    DriverLife m_usage;
    Random m_random;
    std::uint8_t m_nation;
    std::uint8_t m_region;
    int m_presence;
    std::uint32_t m_odometer = 0;
};

} // namespace

bool isOfFirstGeneration(CalibrationPurpose purpose)
{
    return purpose <= CalibrationPurpose::PeriodicInspection;
}

WorkshopLife makeWorkshopLife(std::uint32_t seed, std::uint8_t nation, const WorkshopNeeds& needs)
{
    Diary diary(seed, needs.lastCalibration);
    const auto isEnough = [&] {
        const auto known =
            std::count_if(diary.visits().begin(), diary.visits().end(), [](const Visit& visit) {
                return isOfFirstGeneration(visit.purpose);
            });
        return diary.visits().size() >= std::max(ToldVisits, needs.calibrations) &&
               static_cast<std::size_t>(known) >= needs.firstGenerationCalibrations;
    };
    while (!isEnough()) {
        diary.addEarlier();
    }

    WorkshopLife life;
    Fitter fitter(seed, nation);
    for (const Visit& visit : diary.visits()) {
        life.calibrations.push_back(fitter.calibrate(visit));
    }
    std::reverse(life.calibrations.begin(), life.calibrations.end());

    std::vector<Visit> told(diary.visits().begin(), diary.visits().begin() + ToldVisits);
    std::reverse(told.begin(), told.end());
    const std::vector<Calibration> toldCalibrations(
        life.calibrations.end() - ToldVisits, life.calibrations.end());
    TestDrives drives(seed, nation);
    drives.tell(told, toldCalibrations);
    life.usage = drives.take();
    for (const Calibration& calibration : toldCalibrations) {
        life.identities.push_back(calibration.identity);
    }
    return life;
}

} // namespace sim

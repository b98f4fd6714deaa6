#include "DriverLife.h"

#include "Nations.h"
#include "TimeReal.h"

#include <algorithm>

namespace sim {

namespace {

constexpr std::uint32_t LifeStream = 1;
constexpr int CounterEnd = 10000;
constexpr std::uint8_t Spain = 0x0F;
constexpr int SpanishRegions = 0x11;

// Regulation (EC) 561/2006, in minutes.
constexpr int LongestDrivingWithoutBreak = 270;
constexpr int Break = 45;
/// Directive 2002/15/EC: nobody works longer than six hours without a break, of which the start of the
/// shift takes up to an hour.
constexpr int LongestWorkWithoutBreak = 300;

// All shifts start and end within these minutes of a day, so that eleven hours lie between two of them.
constexpr int EarliestStart = 330;
constexpr int LatestStart = 480;
constexpr int LatestEnd = 1110;
/// Nine hours a day in five days a week are 45, well below 90 in two weeks.
constexpr int LongestDailyDriving = 510;
constexpr int ShortestStretch = 30;
constexpr int LongestStop = 40;
/// A ferry.
constexpr int LongestPause = 110;
/// Work after the last stretch.
constexpr int LongestClosing = 25;

class Story
{
  public:
    Story(std::uint32_t seed, std::uint8_t nation)
        : m_random(seed, LifeStream), m_nation(nation), m_neighbours(nationProfile(nation).neighbours),
          m_country(nation), m_presence(m_random.between(150, 900)), m_gapKnown(m_random.chance(50))
    {
        const std::string pattern = nationProfile(nation).plate;
        const int vehicles = m_random.between(3, 5);
        for (int i = 0; i < vehicles; ++i) {
            Vehicle vehicle;
            vehicle.nation = nation;
            vehicle.plate = makePlate(pattern, m_random);
            vehicle.odometer = static_cast<std::uint32_t>(m_random.between(40000, 620000));
            vehicle.blockCounter = m_random.between(200, 4000);
            m_life.fleet.push_back(vehicle);
        }
        m_regularVehicle = m_random.below(static_cast<std::uint32_t>(vehicles));
    }

    DriverLife tell(std::uint32_t lastDay, int days)
    {
        int holidays = 0;
        for (int left = days - 1; left >= 0; --left) {
            const std::uint32_t date = lastDay - static_cast<std::uint32_t>(left) * SecondsPerDay;
            const int weekday = weekdayOf(date);
            if (holidays == 0 && weekday == 0 && m_random.chance(5)) {
                holidays = 7;
            }
            const bool isHoliday = holidays > 0;
            holidays -= isHoliday ? 1 : 0;
            const bool isLast = left == 0;
            // Every other Saturday at most.
            const bool saturday = weekday == 5 && weekIsEven(date) && m_random.chance(40);
            const bool works = (weekday < 5 && !isHoliday && m_random.chance(95)) || (saturday && !isHoliday);
            startDay(date);
            if (works || isLast || m_insertedOvernight) {
                const bool shortDay = weekday >= 5;
                // Only on a night before another weekday does the card stay in its slot.
                workDay(shortDay, isLast, weekday < 4 && !isLast && m_random.chance(25));
            } else {
                freeDay();
            }
        }
        return std::move(m_life);
    }

  private:
    static bool weekIsEven(std::uint32_t date) { return (date / SecondsPerDay + 3) / 7 % 2 == 0; }

    Day& day() { return m_life.days.back(); }
    Vehicle& vehicle() { return m_life.fleet[m_vehicle]; }
    std::uint32_t now() const
    {
        return m_life.days.back().date + static_cast<std::uint32_t>(m_minute) * SecondsPerMinute;
    }

    void startDay(std::uint32_t date)
    {
        Day next;
        next.date = date;
        next.presence = m_presence;
        m_life.days.push_back(next);
        m_minute = 0;
    }

    void word(std::uint16_t status)
    {
        day().words.push_back(static_cast<std::uint16_t>(status | m_minute));
        m_status = status;
    }

    /// A word only where the status changes.
    void pass(std::uint16_t status, int minutes)
    {
        if (status != m_status) {
            word(status);
        }
        m_minute += minutes;
    }

    std::uint16_t outOfSlot() const
    {
        return static_cast<std::uint16_t>(activity::NotInserted | (m_gapKnown ? activity::CrewOrKnown : 0));
    }

    void freeDay() { word(outOfSlot()); }

    void beginUse(std::uint32_t time)
    {
        VehicleUse use;
        use.begin = time;
        use.odometerBegin = vehicle().odometer;
        use.vehicle = m_vehicle;
        use.blockCounter = vehicle().blockCounter;
        m_life.uses.push_back(use);
    }

    void endUse(std::uint32_t time)
    {
        m_life.uses.back().end = time;
        m_life.uses.back().odometerEnd = vehicle().odometer;
        vehicle().lastDay = day().date;
    }

    void insert(std::uint16_t slotAndCrew)
    {
        m_slotAndCrew = slotAndCrew;
        vehicle().blockCounter = (vehicle().blockCounter + 1) % CounterEnd;
        beginUse(now() + m_random.below(SecondsPerMinute));
    }

    void withdraw()
    {
        const auto slot = static_cast<std::uint16_t>(m_slotAndCrew & activity::CoDriverSlot);
        word(static_cast<std::uint16_t>(slot | activity::NotInserted | activity::Work));
        endUse(now() + m_random.below(SecondsPerMinute));
    }

    std::uint16_t inSlot(std::uint16_t what) const
    {
        return static_cast<std::uint16_t>(m_slotAndCrew | what);
    }

    void takeVehicle(std::size_t index)
    {
        m_vehicle = index;
        // Colleagues drove it in the meantime.
        if (vehicle().lastDay != day().date && (index != m_regularVehicle || m_random.chance(15))) {
            vehicle().odometer += static_cast<std::uint32_t>(m_random.between(20, 900));
        }
    }

    std::size_t otherVehicle()
    {
        const auto count = static_cast<std::uint32_t>(m_life.fleet.size());
        return (m_vehicle + 1 + m_random.below(count - 1)) % count;
    }

    /// The vehicle has moved for the last `minutes`.
    void move(int minutes, bool atWheel)
    {
        const auto km = static_cast<std::uint32_t>(minutes * m_random.between(48, 82) / 60);
        const std::uint32_t begin = now() - static_cast<std::uint32_t>(minutes) * SecondsPerMinute;
        m_life.stretches.push_back({begin, now(), vehicle().odometer, vehicle().odometer + km, atWheel});
        vehicle().odometer += km;
        day().distance += km;
    }

    /// Driving as it looks on a card: a minute or three of work at a gate or in a jam in between.
    void drive(int minutes)
    {
        while (minutes > 0) {
            const int part = std::min(minutes, m_random.between(6, 40));
            pass(inSlot(activity::Driving), part);
            move(part, true);
            minutes -= part;
            if (minutes > 3) {
                const int halt = m_random.between(1, 3);
                pass(inSlot(activity::Work), halt);
                minutes -= halt;
            }
        }
    }

    void workBesideVehicle(int minutes)
    {
        const std::uint32_t begin = now();
        pass(inSlot(activity::Work), minutes);
        m_life.stops.push_back({begin, now(), vehicle().odometer});
    }

    void notePlace(PlaceEntry entry, std::uint32_t time)
    {
        Place place;
        place.time = time;
        place.entry = entry;
        place.nation = m_country;
        place.region = makeRegion(m_country, m_random);
        place.odometer = vehicle().odometer;
        m_life.places.push_back(place);
    }

    void noteCondition(Condition condition) { m_life.conditions.push_back({now(), condition}); }

    void takeBreak()
    {
        const bool ferry = m_random.chance(3);
        if (ferry) {
            noteCondition(Condition::FerryOrTrain);
            pass(inSlot(activity::Rest), m_random.between(75, LongestPause));
            noteCondition(Condition::FerryOrTrainEnd);
            return;
        }
        const int minutes = m_random.between(Break, Break + 15);
        if (m_random.chance(8)) {
            changeVehicle(minutes);
        } else {
            pass(inSlot(activity::Rest), minutes);
        }
    }

    /// The break is spent between two vehicles and entered by hand in the second.
    void changeVehicle(int minutes)
    {
        withdraw();
        m_minute += 1;
        word(activity::NotInserted | activity::CrewOrKnown | activity::Rest);
        m_minute += minutes;
        takeVehicle(otherVehicle());
        insert(m_slotAndCrew);
    }

    void startShift()
    {
        m_minute = m_random.between(EarliestStart, LatestStart);
        if (m_insertedOvernight) {
            notePlace(PlaceEntry::Begin, now());
            return;
        }
        takeVehicle(m_random.chance(85) ? m_regularVehicle : otherVehicle());
        if (m_gapKnown && m_random.chance(10)) {
            // Work before the vehicle, entered by hand.
            notePlace(PlaceEntry::BeginByHand, now());
            pass(activity::NotInserted | activity::CrewOrKnown | activity::Work, m_random.between(10, 30));
            insert(0);
        } else {
            insert(0);
            notePlace(PlaceEntry::Begin, m_life.uses.back().begin);
        }
    }

    void driveAlone(int drivingLeft)
    {
        int drivenSinceBreak = 0;
        int breakEnd = m_minute;
        while (true) {
            const int stretch = std::min(
                {m_random.between(ShortestStretch, 140), drivingLeft,
                 LongestDrivingWithoutBreak - drivenSinceBreak, breakEnd + LongestWorkWithoutBreak - m_minute,
                 LatestEnd - LongestClosing - m_minute});
            const bool outOfScope = m_random.chance(2);
            if (outOfScope) {
                noteCondition(Condition::OutOfScopeBegin);
            }
            drive(stretch);
            if (outOfScope) {
                noteCondition(Condition::OutOfScopeEnd);
            }
            drivenSinceBreak += stretch;
            drivingLeft -= stretch;
            if (drivingLeft < ShortestStretch ||
                m_minute + LongestPause + ShortestStretch + LongestClosing > LatestEnd) {
                return;
            }
            if (drivenSinceBreak > LongestDrivingWithoutBreak - ShortestStretch ||
                m_minute + LongestStop + ShortestStretch > breakEnd + LongestWorkWithoutBreak) {
                takeBreak();
                drivenSinceBreak = 0;
                breakEnd = m_minute;
            } else {
                const bool works = m_random.chance(75);
                const int minutes = m_random.between(8, LongestStop);
                if (works) {
                    workBesideVehicle(minutes);
                } else {
                    pass(inSlot(activity::Available), minutes);
                }
            }
        }
    }

    /// Two drivers take turns; the one who does not drive is available, in the co-driver's slot.
    void driveInTurns()
    {
        static constexpr std::uint16_t Slots[] = {0, activity::CoDriverSlot, 0, activity::CoDriverSlot};
        bool first = true;
        for (const std::uint16_t slot : Slots) {
            if (!first) {
                withdraw();
                m_minute += m_random.between(1, 3);
                insert(static_cast<std::uint16_t>(slot | activity::CrewOrKnown));
            }
            first = false;
            const int turn = m_random.between(90, 125);
            if (slot == 0) {
                drive(turn);
            } else {
                pass(inSlot(activity::Available), turn);
                move(turn, false);
            }
        }
    }

    void workDay(bool shortDay, bool isLast, bool staysOvernight)
    {
        m_presence = (m_presence + 1) % CounterEnd;
        day().presence = m_presence;
        if (m_insertedOvernight) {
            word(inSlot(activity::Rest));
            beginUse(now());
        } else {
            word(outOfSlot());
        }

        startShift();
        const bool crew = !shortDay && !m_insertedOvernight && m_random.chance(8);
        if (crew) {
            m_slotAndCrew = activity::CrewOrKnown;
        }
        m_insertedOvernight = false;
        workBesideVehicle(m_random.between(8, 25));
        if (crew) {
            driveInTurns();
        } else {
            driveAlone(shortDay ? m_random.between(90, 220) : m_random.between(260, LongestDailyDriving));
        }
        m_country = staysOvernight || m_random.chance(10) ? m_random.pick(m_neighbours) : m_nation;
        workBesideVehicle(m_random.between(8, LongestClosing));

        if (staysOvernight && !crew) {
            notePlace(PlaceEntry::End, now());
            pass(inSlot(activity::Rest), 0);
            m_insertedOvernight = true;
            endUse(day().date + SecondsPerDay - SecondsPerMinute);
            return;
        }
        withdraw();
        notePlace(m_random.chance(8) ? PlaceEntry::EndByHand : PlaceEntry::End, m_life.uses.back().end);
        m_slotAndCrew = 0;
        // What the driver enters by hand at the next insertion begins with this withdrawal.
        m_gapKnown = !isLast && m_random.chance(75);
        if (m_gapKnown) {
            m_minute += 1;
            word(outOfSlot());
        }
    }

    DriverLife m_life;
    Random m_random;
    std::uint8_t m_nation;
    std::vector<std::uint8_t> m_neighbours;
    std::uint8_t m_country;
    int m_presence;
    bool m_gapKnown;
    bool m_insertedOvernight = false;
    std::size_t m_regularVehicle = 0;
    std::size_t m_vehicle = 0;
    int m_minute = 0;
    std::uint16_t m_status = 0;
    std::uint16_t m_slotAndCrew = 0;
};

} // namespace

std::string makePlate(const std::string& pattern, Random& random)
{
    // Letters that cannot be taken for digits.
    static const std::string Letters = "ABCDEFGHJKLMNPRSTUVWXYZ";
    std::string plate = pattern;
    for (char& c : plate) {
        if (c == '@') {
            c = Letters[random.below(static_cast<std::uint32_t>(Letters.size()))];
        } else if (c == '#') {
            c = static_cast<char>('0' + random.below(10));
        }
    }
    return plate;
}

std::uint8_t makeRegion(std::uint8_t nation, Random& random)
{
    return nation == Spain ? static_cast<std::uint8_t>(random.between(1, SpanishRegions)) : std::uint8_t{0};
}

DriverLife makeDriverLife(std::uint32_t seed, std::uint8_t nation, std::uint32_t lastDay, int days)
{
    return Story(seed, nation).tell(lastDay, days);
}

} // namespace sim

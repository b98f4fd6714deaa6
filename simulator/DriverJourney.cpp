#include "DriverJourney.h"

#include "TimeReal.h"

#include <algorithm>
#include <utility>

namespace sim {

namespace {

constexpr std::uint32_t RouteStream = 32;
constexpr std::uint32_t LoadStream = 33;
constexpr std::uint32_t FleetStream = 34;

constexpr std::uint32_t DrivingBetweenMarks = 3 * 3600;

// Tenths of a minute; ten are 1.85 km on a meridian.
constexpr int AroundTown = 200;
constexpr int AroundBorder = 20;
constexpr int AroundStay = 100;
constexpr int FarthestTurn = 400;

/// The part of `whole` that `part` is of `of`.
int share(int whole, std::uint32_t part, std::uint32_t of)
{
    return static_cast<int>(static_cast<std::int64_t>(whole) * part / of);
}

Position between(const Position& from, const Position& to, std::uint32_t part, std::uint32_t of)
{
    return {
        from.latitude + share(to.latitude - from.latitude, part, of),
        from.longitude + share(to.longitude - from.longitude, part, of)};
}

/// A day's drive: where the vehicle is at each kilometre, and which kilometre it has reached at each moment.
class Route
{
  public:
    /// Its stretches in ascending order; the way starts at `start`.
    Route(std::vector<Stretch> stretches, const Position& start)
        : m_stretches(std::move(stretches)), m_points{{0, start}}
    {}

    std::uint32_t length() const
    {
        std::uint32_t km = 0;
        for (const Stretch& stretch : m_stretches) {
            km += stretch.odometerEnd - stretch.odometerBegin;
        }
        return km;
    }

    /// The way goes on in a straight line to this point; `km` ascends.
    void goTo(const Position& point, std::uint32_t km) { m_points.emplace_back(km, point); }

    Position positionAt(std::uint32_t time) const
    {
        const std::uint32_t km = kilometreAt(time);
        for (std::size_t i = 1; i < m_points.size(); ++i) {
            const auto& [fromKm, from] = m_points[i - 1];
            const auto& [toKm, to] = m_points[i];
            if (km < toKm) {
                return between(from, to, km - fromKm, toKm - fromKm);
            }
        }
        return m_points.back().second;
    }

    struct Moment
    {
        std::uint32_t time;
        std::uint32_t odometer;
    };

    /// When the vehicle reaches a kilometre, 1..length().
    Moment momentAt(std::uint32_t km) const
    {
        for (const Stretch& stretch : m_stretches) {
            const std::uint32_t distance = stretch.odometerEnd - stretch.odometerBegin;
            if (km <= distance) {
                const std::uint64_t duration = stretch.end - stretch.begin;
                return {
                    stretch.begin + static_cast<std::uint32_t>(duration * km / distance),
                    stretch.odometerBegin + km};
            }
            km -= distance;
        }
        return {m_stretches.back().end, m_stretches.back().odometerEnd};
    }

  private:
    std::uint32_t kilometreAt(std::uint32_t time) const
    {
        std::uint32_t km = 0;
        for (const Stretch& stretch : m_stretches) {
            const std::uint32_t distance = stretch.odometerEnd - stretch.odometerBegin;
            if (time >= stretch.end) {
                km += distance;
            } else if (time > stretch.begin) {
                const std::uint64_t part = time - stretch.begin;
                km += static_cast<std::uint32_t>(part * distance / (stretch.end - stretch.begin));
            }
        }
        return km;
    }

    std::vector<Stretch> m_stretches;
    std::vector<std::pair<std::uint32_t, Position>> m_points;
};

/// What of a life lies between two moments; `time` tells when an entry is.
template <typename Entry, typename Time>
std::vector<Entry> entriesOf(const std::vector<Entry>& all, std::uint32_t begin, std::uint32_t end, Time time)
{
    std::vector<Entry> found;
    for (const Entry& entry : all) {
        if (time(entry) >= begin && time(entry) < end) {
            found.push_back(entry);
        }
    }
    return found;
}

class Traveller
{
  public:
    Traveller(std::uint32_t seed, std::uint8_t home, const DriverLife& life)
        : m_random(seed, RouteStream), m_loadRandom(seed, LoadStream), m_home(home), m_life(life),
          m_located(nationTown(home).has_value()), m_depot(around(townOf(home), AroundTown)),
          m_where(m_depot), m_load(m_loadRandom.chance(15) ? Load::Passengers : Load::Goods)
    {}

    DriverJourney travel()
    {
        for (const Day& day : m_life.days) {
            const std::uint32_t end = day.date + SecondsPerDay;
            const auto places =
                entriesOf(m_life.places, day.date, end, [](const Place& place) { return place.time; });
            if (!places.empty()) {
                const auto stretches = entriesOf(
                    m_life.stretches, day.date, end, [](const Stretch& stretch) { return stretch.begin; });
                const auto stops =
                    entriesOf(m_life.stops, day.date, end, [](const Stop& stop) { return stop.begin; });
                travelDay(stretches, places, stops);
            }
        }
        enterLoads();
        return std::move(m_journey);
    }

  private:
    Position townOf(std::uint8_t nation) const { return nationTown(nation).value_or(Position{}); }

    Position around(const Position& point, int farthest)
    {
        const int latitude = point.latitude + m_random.between(-farthest, farthest);
        return {latitude, point.longitude + m_random.between(-farthest, farthest)};
    }

    /// Where a day ends: at the depot or, abroad, behind the border.
    Position stayIn(std::uint8_t nation)
    {
        if (nation == m_home) {
            return m_depot;
        }
        const auto percent = static_cast<std::uint32_t>(m_random.between(55, 75));
        return around(between(townOf(m_home), townOf(nation), percent, 100), AroundStay);
    }

    Position borderTo(std::uint8_t nation)
    {
        return around(between(townOf(m_home), townOf(nation), 1, 2), AroundBorder);
    }

    Fix fixAt(std::uint32_t time, const Route& route)
    {
        Fix fix;
        fix.time = time;
        fix.accuracy = static_cast<std::uint8_t>(m_random.between(8, 45));
        fix.authenticated = m_random.chance(95);
        if (m_located) {
            fix.position = route.positionAt(time);
        }
        return fix;
    }

    void cross(std::uint8_t left, std::uint8_t entered, std::uint32_t km, const Route& route)
    {
        const Route::Moment moment = route.momentAt(km);
        m_journey.crossings.push_back({left, entered, fixAt(moment.time, route), moment.odometer});
    }

    void travelDay(
        const std::vector<Stretch>& stretches, const std::vector<Place>& places,
        const std::vector<Stop>& stops)
    {
        const std::uint8_t from = places.front().nation;
        const std::uint8_t to = places.back().nation;
        Route route(stretches, m_where);
        const std::uint32_t length = route.length();
        const auto percentOfWay = [&](int first, int last) {
            return length * static_cast<std::uint32_t>(m_random.between(first, last)) / 100;
        };

        std::uint32_t firstBorder = 0;
        std::uint32_t secondBorder = 0;
        if (from == to) {
            const int farthest = std::min(static_cast<int>(length), FarthestTurn);
            route.goTo(around(m_where, farthest), length / 2);
        } else if (from == m_home || to == m_home) {
            firstBorder = percentOfWay(30, 70);
            route.goTo(borderTo(from == m_home ? to : from), firstBorder);
        } else {
            // The neighbours are those of the home nation: the way leads through it.
            firstBorder = percentOfWay(20, 40);
            secondBorder = percentOfWay(60, 80);
            route.goTo(borderTo(from), firstBorder);
            route.goTo(borderTo(to), secondBorder);
        }
        const Position end = stayIn(to);
        route.goTo(end, length);

        if (secondBorder != 0) {
            cross(from, m_home, firstBorder, route);
            cross(m_home, to, secondBorder, route);
        } else if (firstBorder != 0) {
            cross(from, to, firstBorder, route);
        }
        for (const Place& place : places) {
            m_journey.placeFixes.push_back(fixAt(timeOfEntry(place), route));
        }
        markDriving(stretches, route);
        handleLoad(stops, route);
        m_where = end;
    }

    /// What is entered by hand before the insertion gets the position of the insertion.
    std::uint32_t timeOfEntry(const Place& place) const
    {
        if (place.entry != PlaceEntry::BeginByHand) {
            return place.time;
        }
        const auto use = std::find_if(m_life.uses.begin(), m_life.uses.end(), [&](const VehicleUse& known) {
            return known.begin >= place.time;
        });
        return use->begin;
    }

    void markDriving(const std::vector<Stretch>& stretches, const Route& route)
    {
        for (const Stretch& stretch : stretches) {
            if (!stretch.atWheel) {
                continue;
            }
            const std::uint32_t duration = stretch.end - stretch.begin;
            if (m_sinceMark + duration >= DrivingBetweenMarks) {
                const std::uint32_t after = DrivingBetweenMarks - m_sinceMark;
                const auto distance = static_cast<int>(stretch.odometerEnd - stretch.odometerBegin);
                m_journey.marks.push_back(
                    {fixAt(stretch.begin + after, route),
                     stretch.odometerBegin + static_cast<std::uint32_t>(share(distance, after, duration))});
                m_sinceMark = duration - after;
            } else {
                m_sinceMark += duration;
            }
        }
    }

    void handle(Handling handling, const Stop& stop, const Route& route)
    {
        // The card may be inserted at any second of the first minute.
        const std::uint32_t begin = stop.begin + SecondsPerMinute;
        const std::uint32_t time = begin + m_loadRandom.below(stop.end - begin);
        m_journey.operations.push_back({handling, fixAt(time, route), stop.odometer});
    }

    /// Once or twice a day.
    void handleLoad(const std::vector<Stop>& stops, const Route& route)
    {
        const int choice = m_loadRandom.between(0, 99);
        if (choice < 20) {
            handle(Handling::Both, m_loadRandom.pick(stops), route);
            return;
        }
        if (choice < 85) {
            handle(Handling::Load, stops.front(), route);
        }
        if (choice >= 35) {
            handle(Handling::Unload, stops.back(), route);
        }
    }

    /// Some insertions are followed by an entry of what the vehicle carries.
    void enterLoads()
    {
        constexpr std::uint32_t LatestEntry = 300;
        for (const VehicleUse& use : m_life.uses) {
            const bool inserted = use.begin % SecondsPerDay != 0;
            if (inserted && m_loadRandom.chance(35)) {
                const std::uint32_t time = use.begin + 1 + m_loadRandom.below(LatestEntry);
                const Load load = m_loadRandom.chance(5) ? Load::Undefined : m_load;
                m_journey.loads.push_back({time, load});
            }
        }
    }

    DriverJourney m_journey;
    Random m_random;
    Random m_loadRandom;
    std::uint8_t m_home;
    const DriverLife& m_life;
    /// False: the nation has no place on the map.
    bool m_located;
    Position m_depot;
    Position m_where;
    Load m_load;
    /// Seconds of driving since the last mark.
    std::uint32_t m_sinceMark = 0;
};

std::vector<UnitUse> unitsOf(const DriverLife& life)
{
    std::vector<UnitUse> units;
    for (const VehicleUse& use : life.uses) {
        if (units.empty() || units.back().vehicle != use.vehicle) {
            units.push_back({use.begin, use.vehicle});
        }
    }
    return units;
}

} // namespace

VehicleIdentity makeVehicleIdentity(Random& random)
{
    // ISO 3779: no I, O and Q.
    static const std::string Characters = "0123456789ABCDEFGHJKLMNPRSTUVWXYZ";
    static const std::vector<std::string> softwares = {"0201", "0312", "V4.0", "V5.2"};

    VehicleIdentity identity;
    identity.vin = "0SM"; // no real maker
    while (identity.vin.size() < VinLength - 5) {
        identity.vin += Characters[random.below(static_cast<std::uint32_t>(Characters.size()))];
    }
    identity.vin += random.digits(5);
    identity.unitManufacturer = 0x54; // no real one
    identity.unitId = static_cast<std::uint8_t>(random.between(1, 9));
    identity.unitSoftware = random.pick(softwares);
    return identity;
}

DriverJourney makeDriverJourney(std::uint32_t seed, std::uint8_t nation, const DriverLife& life)
{
    DriverJourney journey = Traveller(seed, nation, life).travel();
    journey.units = unitsOf(life);
    Random random(seed, FleetStream);
    for (std::size_t i = 0; i < life.fleet.size(); ++i) {
        journey.vehicles.push_back(makeVehicleIdentity(random));
    }
    return journey;
}

} // namespace sim

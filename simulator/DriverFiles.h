// What both applications of a driver card rest on: one story of the driver, and the EFs and records that have
// the same layout in either generation.
#pragma once

#include "DriverContents.h"
#include "DriverLife.h"
#include "Random.h"
#include "TimeReal.h"

namespace sim {

/// Who the card belongs to.
struct Person
{
    std::string surname;
    std::string firstNames;
    std::string authority;
    std::string language;
    std::string driverIdentification;
    std::string licenceNumber;
    Date birth;
    /// TimeReal
    std::uint32_t issued = 0;
    std::uint32_t expires = 0;
    char renewal = '0';
};

/// An event or fault.
struct Incident
{
    std::uint8_t code = 0;
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    std::size_t vehicle = 0;
};

/// Ascending in time within each group.
using IncidentGroups = std::vector<std::vector<Incident>>;

struct IncidentKind
{
    std::vector<std::uint8_t> codes;
    int fewest;
    int most;
    /// Longest duration in seconds.
    int longest;
    bool atInsertion = false;
};

/// A group for each kind.
IncidentGroups makeIncidents(const std::vector<IncidentKind>& kinds, const DriverLife& life, Random& random);
void mergeIncidents(std::vector<Incident>& into, const std::vector<Incident>& others);

struct DriverStory
{
    Person person;
    DriverLife life;
    /// As the first generation groups them and with its codes only.
    IncidentGroups events;
    IncidentGroups faults;
};

/// Throws as makeDriverContents() does.
DriverStory makeDriverStory(const DriverParameters& parameters);

/// Throws std::invalid_argument with `what` unless it holds.
void requireParameter(bool holds, const char* what);

/// 0..9999 in two bytes of decimal digits.
void appendCounter(Bytes& to, int counter);
/// VehicleRegistrationIdentification. Plates are ASCII, which every code page has.
void appendRegistration(Bytes& to, const Vehicle& vehicle, int codePage);

/// The records that a cyclic EF of `slots` still holds, at their places; `empty` fills the others.
Bytes cyclicSlots(const std::vector<Bytes>& records, std::size_t slots, const Bytes& empty);
/// Index of the newest record among them.
std::uint32_t newestSlot(const std::vector<Bytes>& records, std::size_t slots);
/// That index in two bytes, then the slots; free ones are all 00.
Bytes cyclicFile(const std::vector<Bytes>& records, std::size_t slots, std::size_t recordLength);

/// `approval` is the approval number of the card, 8 characters.
Bytes makeIcc(const DriverParameters& parameters, const Person& person, const std::string& approval);
/// The 8 bytes of EF_ICC that name the card's keys.
Bytes extendedSerialNumber(const Bytes& icc);
Bytes makeIc(const DriverParameters& parameters);
Bytes makeIdentification(const DriverParameters& parameters, const Person& person);
Bytes makeDrivingLicenceInfo(const DriverParameters& parameters, const Person& person);
Bytes makeCardDownload(const DriverParameters& parameters);
/// EF_Events_Data or EF_Faults_Data.
Bytes makeIncidentFile(
    const IncidentGroups& groups, std::size_t perGroup, const std::vector<Vehicle>& fleet, int codePage);
/// EF_Driver_Activity_Data with a buffer of `capacity` bytes.
Bytes makeActivity(const DriverParameters& parameters, std::size_t capacity, const std::vector<Day>& days);
/// Empty: the card lies in a reader, not in a vehicle unit.
Bytes makeCurrentUsage();
Bytes makeControlActivity(const DriverParameters& parameters, const DriverLife& life);

} // namespace sim

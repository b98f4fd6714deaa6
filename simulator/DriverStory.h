// What both applications of a driver card rest on: the driver, his story, and the EFs that are the same in
// either generation.
#pragma once

#include "DriverContents.h"
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

struct DriverStory : UsageStory
{
    Person person;
};

/// Throws as makeDriverContents() does.
DriverStory makeDriverStory(const DriverParameters& parameters);
UsageParameters driverUsage(const DriverParameters& parameters);

/// `approval` is the approval number of the card, 8 characters.
MasterContents
makeMasterContents(const DriverParameters& parameters, const Person& person, const std::string& approval);
Bytes makeIdentification(const DriverParameters& parameters, const Person& person);
Bytes makeDrivingLicenceInfo(const DriverParameters& parameters, const Person& person);
Bytes makeCardDownload(const DriverParameters& parameters);

} // namespace sim

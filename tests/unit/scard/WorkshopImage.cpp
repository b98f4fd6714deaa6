#include "WorkshopImage.h"

#include <cstring>

namespace test {

namespace {

scard::WorkshopCard_EF_Identification identificationOf(
    unsigned char nation, const std::string& owner, const std::string& indices, const std::string& workshop,
    const std::string& surname, const std::string& firstNames, const std::string& language)
{
    scard::WorkshopCard_EF_Identification identification{};
    identification.cardIssuingMemberState = nation;
    std::memcpy(&identification.cardNumber, (owner + indices).data(), 16);
    identification.cardIssuingAuthorityName = nameField(1, "Authority");
    identification.workshopName = nameField(1, workshop);
    identification.holderSurname = nameField(1, surname);
    identification.holderFirstNames = nameField(1, firstNames);
    std::memcpy(identification.cardHolderPreferredLanguage, language.data(), 2);
    return identification;
}

} // namespace

scard::WorkshopCard_EF_Identification petra()
{
    return identificationOf(0x0D, "dw00000001234", "201", "Musterwerkstatt", "Musterfrau", "Petra", "de");
}

scard::WorkshopCard_EF_Identification pierre()
{
    return identificationOf(0x11, "fw00000004321", "000", "Atelier", "Exemple", "Pierre", "fr");
}

Bytes workshopApplication(
    std::uint32_t events, std::uint32_t faults, std::uint32_t activityBytes, std::uint32_t vehicles,
    std::uint32_t places, std::uint32_t calibrations)
{
    return joined(
        {{0x02, 0x00, 0x00},
         number(events, 1),
         number(faults, 1),
         number(activityBytes, 2),
         number(vehicles, 2),
         number(places, 1),
         number(calibrations, 1)});
}

Bytes workshopApplicationG2(Version version)
{
    return joined(
        {{0x02, 0x01},
         number(version == Version::second ? 1 : 0, 1),
         {smallWorkshopEventsG2, smallWorkshopFaultsG2},
         number(smallWorkshopActivityBytesG2, 2),
         number(smallWorkshopVehiclesG2, 2),
         number(smallWorkshopPlacesG2, 2),
         number(smallWorkshopCalibrationsG2, 2),
         number(smallWorkshopGnssPlaces, 2),
         number(smallWorkshopConditions, 2),
         number(smallWorkshopVehicleUnits, 2)});
}

Image smallWorkshopImage(const scard::WorkshopCard_EF_Identification& identification)
{
    Image image;
    const auto add = [&image](unsigned short fid, const Bytes& data) { image.add(fid, dataG1, data); };
    const auto addSigned = [&image](unsigned short fid, const Bytes& data) {
        image.addSigned(fid, dataG1, data);
    };
    add(0x0002, counted(25, 0x40));
    add(0x0005, {0x12, 0x34, 0x56, 0x78, 1, 2, 3, 4});
    addSigned(
        0x0501, workshopApplication(
                    smallWorkshopEvents, smallWorkshopFaults, smallWorkshopActivityBytes,
                    smallWorkshopVehicles, smallWorkshopPlaces, smallWorkshopCalibrations));
    add(0xC100, counted(194));
    add(0xC108, counted(194, 7));
    addSigned(0x0520, recordBytes(identification));
    addSigned(0x0509, {0x00, 0x07});
    addSigned(0x050A, efWith(3 + std::size_t{smallWorkshopCalibrations} * 105, 0, {0x01, 0x02, 0x00}));
    addSigned(0x0502, Bytes(std::size_t{smallWorkshopEvents} * 6 * 24));
    addSigned(0x0503, Bytes(std::size_t{smallWorkshopFaults} * 2 * 24));
    addSigned(0x0504, Bytes(4 + std::size_t{smallWorkshopActivityBytes}));
    addSigned(0x0505, Bytes(2 + std::size_t{smallWorkshopVehicles} * 31));
    addSigned(0x0506, Bytes(1 + std::size_t{smallWorkshopPlaces} * 10));
    addSigned(0x0507, Bytes(19));
    addSigned(0x0508, Bytes(46));
    addSigned(0x0522, Bytes(10));
    return image;
}

Image secondWorkshopApplication(Version version)
{
    Image image;
    const auto add = [&image](unsigned short fid, const Bytes& data) { image.add(fid, dataG2, data); };
    const auto addSigned = [&image](unsigned short fid, const Bytes& data) {
        image.addSigned(fid, dataG2, data);
    };
    const auto addCyclic = [&](unsigned short fid, std::size_t count, std::size_t size) {
        addSigned(fid, Bytes(2 + count * size));
    };
    add(0x0002, counted(25, 0x40));
    add(0x0005, {0x12, 0x34, 0x56, 0x78, 1, 2, 3, 4});
    addSigned(0x0501, workshopApplicationG2(version));
    add(0xC100, certificate(205));
    add(0xC101, certificate(204));
    add(0xC108, certificate(305));
    add(0xC109, certificate(125));
    addSigned(0x0520, recordBytes(pierre()));
    addSigned(0x0509, {0x00, 0x09});
    addSigned(0x050A, efWith(4 + std::size_t{smallWorkshopCalibrationsG2} * 178, 0, {0x03, 0x04, 0, 0}));
    addSigned(0x0502, Bytes(std::size_t{smallWorkshopEventsG2} * 11 * 24));
    addSigned(0x0503, Bytes(std::size_t{smallWorkshopFaultsG2} * 2 * 24));
    addSigned(0x0504, Bytes(4 + std::size_t{smallWorkshopActivityBytesG2}));
    addCyclic(0x0505, smallWorkshopVehiclesG2, 48);
    addCyclic(0x0506, smallWorkshopPlacesG2, 21);
    addSigned(0x0507, Bytes(19));
    addSigned(0x0508, Bytes(46));
    addCyclic(0x0523, smallWorkshopVehicleUnits, 10);
    addCyclic(0x0524, smallWorkshopGnssPlaces, 18);
    addCyclic(0x0522, smallWorkshopConditions, 5);
    if (version == Version::first)
        return image;
    addSigned(
        0x0525, joined(
                    {number(8, 2), number(smallWorkshopCrossings, 2), number(smallWorkshopLoads, 2),
                     number(smallWorkshopLoadTypes, 2), number(3072, 2)}));
    addCyclic(0x0526, smallWorkshopPlacesG2, 5);
    addCyclic(0x0527, smallWorkshopGnssPlaces, 5);
    addCyclic(0x0528, smallWorkshopCrossings, 17);
    addCyclic(0x0529, smallWorkshopLoads, 20);
    addCyclic(0x0530, smallWorkshopLoadTypes, 5);
    addCyclic(0x0531, smallWorkshopCalibrationsG2, 27);
    return image;
}

Image smallWorkshopImageG2(Version version)
{
    return smallWorkshopImage().append(secondWorkshopApplication(version));
}

} // namespace test

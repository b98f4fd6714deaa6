#include "DriverImageG2.h"

#include "RecordBytes.h"

#include <cstring>

namespace test {

namespace {

constexpr std::size_t pointerLength = 2;

Bytes zeros(std::size_t count, std::size_t size)
{
    return Bytes(pointerLength + count * size);
}

} // namespace

scard::DriverCard_EF_Identification johanna()
{
    scard::DriverCard_EF_Identification identification{};
    identification.cardIssuingMemberState = 0x11;
    std::memcpy(identification.cardNumber.driverIdentification, "fr000000654321", 14);
    identification.cardNumber.cardReplacementIndex = '0';
    identification.cardNumber.cardRenewalIndex = '0';
    identification.cardIssuingAuthorityName = nameField(1, "Imprimerie Nationale");
    identification.holderSurname = nameField(1, "Musterfrau");
    identification.holderFirstNames = nameField(1, "Johanna");
    std::memcpy(identification.cardHolderPreferredLanguage, "fr", 2);
    return identification;
}

Bytes driverApplicationG2(Version version, unsigned int activityBytes)
{
    return joined(
        {{0x01, 0x01},
         number(version == Version::second ? 1 : 0, 1),
         {smallG2Events, smallG2Faults},
         number(activityBytes, 2),
         number(smallG2Vehicles, 2),
         number(smallG2Places, 2),
         number(smallG2GnssPlaces, 2),
         number(smallG2Conditions, 2),
         number(smallG2VehicleUnits, 2)});
}

Image secondApplication(Version version, unsigned int seconds)
{
    Image image;
    const auto add = [&image](unsigned short fid, const Bytes& data) { image.add(fid, dataG2, data); };
    const auto addSigned = [&image](unsigned short fid, const Bytes& data) {
        image.addSigned(fid, dataG2, data);
    };
    add(0x0002, counted(25, 0x40));
    add(0x0005, {0x12, 0x34, 0x56, 0x78, 1, 2, 3, 4});
    addSigned(0x0501, driverApplicationG2(version));
    add(0xC100, certificate(205));
    add(0xC101, certificate(204));
    add(0xC108, certificate(305));
    add(0xC109, certificate(125));
    addSigned(0x0520, recordBytes(johanna()));
    addSigned(0x050E, timeReal(seconds));
    addSigned(0x0521, Bytes(53, ' '));
    addSigned(0x0502, Bytes(std::size_t{smallG2Events} * 11 * 24));
    addSigned(0x0503, Bytes(std::size_t{smallG2Faults} * 2 * 24));
    addSigned(0x0504, Bytes(4 + std::size_t{smallG2ActivityBytes}));
    addSigned(0x0505, zeros(smallG2Vehicles, 48));
    addSigned(0x0506, zeros(smallG2Places, 21));
    addSigned(0x0507, Bytes(19));
    addSigned(0x0508, Bytes(46));
    addSigned(0x0522, zeros(smallG2Conditions, 5));
    addSigned(0x0523, zeros(smallG2VehicleUnits, 10));
    addSigned(0x0524, zeros(smallG2GnssPlaces, 18));
    if (version == Version::first)
        return image;
    addSigned(
        0x0525, joined(
                    {number(8, 2), number(smallG2Crossings, 2), number(smallG2Loads, 2),
                     number(smallG2LoadTypes, 2), number(3072, 2)}));
    addSigned(0x0526, zeros(smallG2Places, 5));
    addSigned(0x0527, zeros(smallG2GnssPlaces, 5));
    addSigned(0x0528, zeros(smallG2Crossings, 17));
    addSigned(0x0529, zeros(smallG2Loads, 20));
    addSigned(0x0530, zeros(smallG2LoadTypes, 5));
    return image;
}

Image smallDriverImageG2(Version version)
{
    return smallDriverImage().append(secondApplication(version));
}

} // namespace test

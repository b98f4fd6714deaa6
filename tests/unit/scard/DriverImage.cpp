#include "DriverImage.h"

#include <cstring>

namespace test {

namespace {

unsigned char lowByte(unsigned int number)
{
    return static_cast<unsigned char>(number & 0xFF);
}

} // namespace

scard::DriverCard_EF_Identification johannes()
{
    scard::DriverCard_EF_Identification identification{};
    identification.cardIssuingMemberState = 0x0D;
    std::memcpy(identification.cardNumber.driverIdentification, "df000000123456", 14);
    identification.cardNumber.cardReplacementIndex = '0';
    identification.cardNumber.cardRenewalIndex = '1';
    identification.cardIssuingAuthorityName = nameField(1, "Kraftfahrt-Bundesamt");
    identification.holderSurname = nameField(1, "Mustermann");
    identification.holderFirstNames = nameField(1, "Johannes");
    std::memcpy(identification.cardHolderPreferredLanguage, "de", 2);
    return identification;
}

Bytes driverApplication(
    unsigned int events, unsigned int faults, unsigned int activityBytes, unsigned int vehicles,
    unsigned int places)
{
    return {
        0x01,
        0x00,
        0x00,
        lowByte(events),
        lowByte(faults),
        lowByte(activityBytes >> 8),
        lowByte(activityBytes),
        lowByte(vehicles >> 8),
        lowByte(vehicles),
        lowByte(places)};
}

Image smallDriverImage(const scard::DriverCard_EF_Identification& identification, unsigned int seconds)
{
    Image image;
    const auto add = [&image](unsigned short fid, const Bytes& data) { image.add(fid, dataG1, data); };
    const auto addSigned = [&image](unsigned short fid, const Bytes& data) {
        image.addSigned(fid, dataG1, data);
    };
    add(0x0002, counted(25, 0x40));
    add(0x0005, {0x12, 0x34, 0x56, 0x78, 1, 2, 3, 4});
    addSigned(
        0x0501,
        driverApplication(
            smallCardEvents, smallCardFaults, smallCardActivityBytes, smallCardVehicles, smallCardPlaces));
    add(0xC100, counted(194));
    add(0xC108, counted(194, 7));
    addSigned(0x0520, recordBytes(identification));
    addSigned(
        0x050E, {lowByte(seconds >> 24), lowByte(seconds >> 16), lowByte(seconds >> 8), lowByte(seconds)});
    addSigned(0x0521, Bytes(53, ' '));
    addSigned(0x0502, Bytes(smallCardEvents * 6 * 24));
    addSigned(0x0503, Bytes(smallCardFaults * 2 * 24));
    addSigned(0x0504, Bytes(4 + smallCardActivityBytes));
    addSigned(0x0505, Bytes(2 + smallCardVehicles * 31));
    addSigned(0x0506, Bytes(1 + smallCardPlaces * 10));
    addSigned(0x0507, Bytes(19));
    addSigned(0x0508, Bytes(46));
    addSigned(0x0522, Bytes(280));
    return image;
}

} // namespace test

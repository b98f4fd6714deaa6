#include "CompanyImage.h"

#include <cstring>

namespace test {

scard::CompanyCard_EF_Identification spedition()
{
    scard::CompanyCard_EF_Identification identification{};
    identification.cardIssuingMemberState = 0x01;
    std::memcpy(&identification.cardNumber, "ac00000001234567", 16);
    identification.cardIssuingAuthorityName = nameField(1, "Authority");
    identification.companyName = nameField(1, "Muster Spedition");
    identification.companyAddress.codePage = 1;
    std::memcpy(identification.companyAddress.address, "Musterweg 1", 11);
    std::memcpy(identification.cardHolderPreferredLanguage, "de", 2);
    return identification;
}

Bytes companyIcc()
{
    return joined({{0x00}, {0x00, 0x12, 0x34, 0x56, 0x03, 0x24, 0x0A, 0xBC}, counted(16, 0x41)});
}

Bytes companyApplication(Version version, std::uint32_t activities)
{
    return joined({{0x04, 0x01}, number(version == Version::second ? 1 : 0, 1), number(activities, 2)});
}

Bytes companyActivity(unsigned char type, std::uint32_t seconds)
{
    return joined(
        {{type},
         timeReal(seconds),
         {0x01, 0x0D},
         field("DF00000012345601", 16),
         registration(0x0D, 1, "B AB 1234"),
         timeReal(seconds - 200),
         timeReal(seconds - 100)});
}

Bytes companyActivities(std::size_t count, const std::vector<Bytes>& records)
{
    Bytes ef(2 + count * 46);
    for (std::size_t i = 0; i < records.size(); ++i)
        put(ef, 2 + i * 46, records[i]);
    return ef;
}

Image smallCompanyImage()
{
    Image image;
    image.add(0x0002, dataG1, companyIcc());
    image.add(0x0005, dataG1, {0x12, 0x34, 0x56, 0x78, 1, 2, 3, 4});
    image.addSigned(0x0501, dataG1, joined({{0x04, 0x00, 0x00}, number(smallCompanyActivities, 2)}));
    image.add(0xC100, dataG1, counted(194));
    image.add(0xC108, dataG1, counted(194, 7));
    image.addSigned(
        0x050D, dataG1,
        companyActivities(smallCompanyActivities, {companyActivity(1, 1000), companyActivity(2, 2000)}));
    return image;
}

Image secondCompanyApplication(Version version, unsigned char type)
{
    Image image;
    image.add(0x0002, type, companyIcc());
    image.add(0x0005, type, {0x12, 0x34, 0x56, 0x78, 1, 2, 3, 4});
    image.add(0x0501, type, companyApplication(version, smallCompanyActivitiesG2));
    image.add(0xC100, type, certificate(205));
    image.add(0xC108, type, certificate(305));
    image.add(0xC109, type, certificate(125));
    image.add(0x0520, type, recordBytes(spedition()));
    image.add(
        0x050D, type,
        companyActivities(smallCompanyActivitiesG2, {companyActivity(3, 3000), companyActivity(4, 4000)}));
    if (version == Version::second)
        image.add(0x0525, type, {0x00, 0x02, 0x0C, 0x00});
    return image;
}

Image companyFileG2(Version version)
{
    return smallCompanyImage().append(secondCompanyApplication(version, dataG1));
}

} // namespace test

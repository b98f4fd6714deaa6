#pragma once

#include "Image.h"
#include "RecordBytes.h"

#include <scard/records/CompanyCard.h>

// A small company card as a download image. A file of a second-generation card has the records of both
// applications, all with the first generation's type.

namespace test {

/// Company activities of the first and of the second application.
constexpr unsigned char smallCompanyActivities = 2;
constexpr unsigned char smallCompanyActivitiesG2 = 3;

/// Muster Spedition, Austrian.
scard::CompanyCard_EF_Identification spedition();

/// EF_ICC of the card with the serial number 00123456, made in March 2024, type 0A.
Bytes companyIcc();

/// EF_Application_Identification with this count.
Bytes companyApplication(Version version, std::uint32_t activities);

/// An activity, 46 bytes: of this type, at this time.
Bytes companyActivity(unsigned char type, std::uint32_t seconds);

/// EF_Company_Activity_Data: a pointer, @p records and empty slots up to @p count of them.
Bytes companyActivities(std::size_t count, const std::vector<Bytes>& records);

/// Every record of the first application in the order in which downloads are written: activities of type 1
/// at 1000 and of type 2 at 2000.
Image smallCompanyImage();

/// Every record of the second application in the order in which downloads are written, as records of this
/// type: activities of type 3 at 3000, of type 4 at 4000 and an empty slot.
Image secondCompanyApplication(Version version, unsigned char type);

/// A file of a second-generation card.
Image companyFileG2(Version version);

} // namespace test

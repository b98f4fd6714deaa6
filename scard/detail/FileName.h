#pragma once

#include <aux/CountryCodes.h>
#include <scard/records/DriverCard.h>
#include <scard/records/Identification.h>
#include <scard/SCardGeneric.h>
#include <scard/SCardMeta.h>

#include <QDateTime>
#include <QString>

namespace scard::detail {

/// What the name of a driver's or a workshop's download file is made of, beside the card's number.
struct FileNameParts
{
    QString countryCode; ///< letters of the nation that issued the card
    QString firstNames;  ///< decoded, blanks and all
    QString surname;     ///< decoded, blanks and all
    QDateTime timestamp;
};

/// The parts from a driver's or a workshop's EF_Identification.
template <typename Identification>
FileNameParts fileNameParts(const Identification& identification, const QDateTime& timestamp)
{
    return {
        aux::CountryCodes::countryCodeFromStateID(identification.cardIssuingMemberState),
        SCardGeneric::textfieldToString(identification.holderFirstNames),
        SCardGeneric::textfieldToString(identification.holderSurname), timestamp};
}

/// The file name by the convention @p region; empty for a region that does not exist.
QString driverFileName(FilenameRegion region, const DriverCardNumber& number, const FileNameParts& parts);

/// The same for a workshop, whose name has the card's three indices in it where a driver's has none or two.
QString workshopFileName(FilenameRegion region, const OwnerCardNumber& number, const FileNameParts& parts);

/// A company's file is named by the card's serial number, in every region: the company is not known.
QString companyFileName(const ExtendedSerialNumber& serial, const QDateTime& timestamp);

} // namespace scard::detail

#pragma once

#include <scard/detail/Bytes.h>
#include <scard/Nation.h>
#include <scard/records/BigEndian.h>
#include <scard/records/TextFields.h>

#include <QDateTime>
#include <QString>

#include <cstddef>
#include <cstring>
#include <vector>

// Fields of records, as what a host shows.

namespace scard::detail {

/// Calls @p use with each whole record of the EF's bytes @p ef, from byte @p offset on.
template <typename Record, typename Use>
void forEachRecord(const Bytes& ef, std::size_t offset, Use use)
{
    for (; offset + sizeof(Record) <= ef.size(); offset += sizeof(Record)) {
        Record record;
        std::memcpy(&record, ef.data() + offset, sizeof record);
        use(record);
    }
}

/// A time that cards use for "not known".
constexpr std::uint32_t unknownTime = 0xFFFFFFFF;

QDateTime localTime(TimeReal time);

/// Null for a time that is not known.
QDateTime localTimeUnlessUnknown(TimeReal time);

/// Null for a time that was never set, too.
QDateTime localTimeIfSet(TimeReal time);

// Text fields, decoded and trimmed.
QString nameText(const Name& name);
QString registrationText(const VehicleRegistrationIdentification& registration);

Nation nation(unsigned char nationNumeric);

/// Characters of IA5, trimmed.
template <std::size_t Length>
QString ia5Text(const unsigned char (&characters)[Length])
{
    const char* text = reinterpret_cast<const char*>(characters);
    return QString::fromLatin1(text, static_cast<int>(qstrnlen(text, Length))).trimmed();
}

} // namespace scard::detail

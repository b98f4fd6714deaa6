// Text fields in all code pages, and the names of files that are made from them.
#include "Target.h"

#include <scard/detail/FileName.h>
#include <scard/detail/HolderName.h>
#include <scard/detail/TextField.h>
#include <scard/records/WorkshopCard.h>

#include <QFile>

#include <cstring>

namespace {

/// A record from the input's first bytes, with zeros where there are no more.
template <typename Record>
Record recordOf(const std::uint8_t* data, std::size_t size)
{
    Record record{};
    std::memcpy(&record, data, std::min(size, sizeof record));
    return record;
}

void expectText(const QString& text)
{
    fuzz::expect(!text.contains(QChar()), "a text ends at its first zero byte");
    fuzz::expect(QString::fromUtf8(text.toUtf8()) == text, "a text is valid Unicode");
}

void expectFileName(const QString& name)
{
    expectText(name);
    fuzz::expect(!name.isEmpty(), "each region has a name for the file");
    // What a disk takes: 255 bytes.
    fuzz::expect(QFile::encodeName(name).size() <= 255, "a file's name is no longer than a disk takes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace scard;
    fuzz::discardDebugStream();
    if (size == 0)
        return 0;
    expectText(detail::decodeText(data[0], data + 1, size - 1));

    expectText(SCardGeneric::textfieldToString(recordOf<Name>(data, size)));
    expectText(SCardGeneric::textfieldToString(recordOf<Address>(data, size)));
    expectText(SCardGeneric::textfieldToString(recordOf<VehicleRegistrationNumber>(data, size)));

    const auto driver = recordOf<DriverCard_EF_Identification>(data, size);
    const auto workshop = recordOf<WorkshopCard_EF_Identification>(data, size);
    expectText(detail::holderName(driver));
    expectText(detail::holderName(workshop));
    const QDateTime time(QDate(2024, 3, 5), QTime(14, 7), Qt::UTC);
    for (const FilenameRegion region : {RegionDDD, RegionC1B, RegionTGD}) {
        expectFileName(
            detail::driverFileName(region, driver.cardNumber, detail::fileNameParts(driver, time)));
        expectFileName(
            detail::workshopFileName(region, workshop.cardNumber, detail::fileNameParts(workshop, time)));
    }
    expectFileName(detail::companyFileName(recordOf<ExtendedSerialNumber>(data, size), time));
    return 0;
}

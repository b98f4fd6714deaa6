#include <scard/detail/UsageLists.h>

#include <gmock/gmock.h>

// The bytes of an EF in, the list out: no card, no image.

namespace {

using namespace scard::detail;

constexpr std::uint32_t march5 = 0x65E66080; // 2024-03-05 00:00 UTC

Bytes operator+(Bytes one, const Bytes& other)
{
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

Bytes big(std::uint32_t number, int count)
{
    Bytes bytes;
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<unsigned char>((number >> shift) & 0xFF));
    return bytes;
}

Bytes text(const std::string& characters, std::size_t length)
{
    Bytes bytes(characters.begin(), characters.end());
    bytes.resize(length, ' ');
    return bytes;
}

/// A vehicle record as the first generation has it, 31 bytes.
Bytes vehicle(std::uint32_t first, std::uint32_t last, const std::string& plate)
{
    return big(0x01E240, 3) + big(0x98967F, 3) + big(first, 4) + big(last, 4) + Bytes{0x0D, 0x01} +
           text(plate, 13) + Bytes{0x00, 0x07};
}

/// An event or a fault, 24 bytes.
Bytes incident(unsigned char type, std::uint32_t begin, std::uint32_t end)
{
    return Bytes{type} + big(begin, 4) + big(end, 4) + Bytes{0x0D, 0x01} + text("D-EF 7", 13);
}

const Bytes pointer = {0x00, 0x01};

QDateTime timeOrNull(std::uint32_t seconds)
{
    return seconds == 0xFFFFFFFF ? QDateTime() : QDateTime::fromSecsSinceEpoch(seconds, Qt::LocalTime);
}

struct Generation
{
    const char* name;
    Bytes tail; ///< what the record has behind the first generation's 31 bytes
    std::size_t (*count)(const Bytes&);
};

const Generation generations[] = {
    {"first", {}, [](const Bytes& ef) { return usedVehiclesG1(ef).size(); }},
    {"second", text("WDB9340321L123456", 17), [](const Bytes& ef) { return usedVehiclesG2(ef).size(); }},
};

TEST(UsedVehicles, CountTheRecordsInUse)
{
    for (const Generation& generation : generations) {
        SCOPED_TRACE(generation.name);
        const Bytes used = vehicle(march5, march5 + 60, "AB 123") + generation.tail;
        const Bytes unused = vehicle(march5, 0, "") + generation.tail;
        const Bytes open = vehicle(march5, 0xFFFFFFFF, "CD 4") + generation.tail;
        const struct
        {
            const char* name;
            Bytes ef;
            std::size_t count;
        } rows[] = {
            {"an EF that was not read", {}, 0},
            {"a byte", {0x00}, 0},
            {"the pointer alone", pointer, 0},
            {"one", pointer + used, 1},
            {"an unused slot", pointer + unused, 0},
            {"unused slots before and between", pointer + unused + used + unused + open, 2},
            {"a record without its last byte", pointer + used + Bytes(used.begin(), used.end() - 1), 1},
        };
        for (const auto& row : rows)
            EXPECT_EQ(generation.count(row.ef), row.count) << row.name;
    }
}

TEST(UsedVehicles, HaveTheFieldsOfTheRecordInTheCardsOrder)
{
    const Bytes tail = text("WDB9340321L123456", 17);
    const Bytes later = vehicle(march5 + 1000, march5 + 2000, "LATER");
    const Bytes earlier = vehicle(march5, march5 + 60, "M-AB 12");
    const auto first = usedVehiclesG1(pointer + later + earlier);
    const auto second = usedVehiclesG2(pointer + later + tail + earlier + tail);
    ASSERT_EQ(first.size(), 2u);
    ASSERT_EQ(second.size(), 2u);
    EXPECT_EQ(second[1].vehicleIdentificationNumber, "WDB9340321L123456");
    const scard::SCardDriverG1::_VEHICLE_USAGE_INFO& ofSecond = second[1];
    for (const scard::SCardDriverG1::_VEHICLE_USAGE_INFO& use : {first[1], ofSecond}) {
        EXPECT_EQ(use.firstUse.toSecsSinceEpoch(), march5);
        EXPECT_EQ(use.lastUse.toSecsSinceEpoch(), march5 + 60);
        EXPECT_EQ(use.firstUse.timeSpec(), Qt::LocalTime);
        EXPECT_EQ(use.odometerBegin, 123456u);
        EXPECT_EQ(use.odometerEnd, 9999999u);
        EXPECT_EQ(use.registration, "M-AB 12");
    }
}

TEST(EventsAndFaultsOfBytes, CountTheRecordsInUse)
{
    const Bytes used = incident(0x08, march5, march5 + 60);
    const Bytes unused = incident(0x00, march5, march5);
    const struct
    {
        const char* name;
        Bytes ef;
        std::size_t count;
    } rows[] = {
        {"an EF that was not read", {}, 0},
        {"less than a record", Bytes(23, 0x08), 0},
        {"one", used, 1},
        {"an unused slot", unused, 0},
        {"unused slots before and between", unused + used + unused + used, 2},
        {"a record without its last byte", used + Bytes(used.begin(), used.end() - 1), 1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(events(row.ef).size(), row.count) << row.name;
        EXPECT_EQ(faults(row.ef).size(), row.count) << row.name;
    }
}

TEST(EventsAndFaultsOfBytes, HaveTheTimesOfTheCard)
{
    const struct
    {
        std::uint32_t begin;
        std::uint32_t end;
    } rows[] = {{march5, march5 + 60}, {0, 0}, {0xFFFFFFFF, march5}, {march5, 0xFFFFFFFF}, {0xFFFFFFFE, 1}};
    for (const auto& row : rows) {
        const Bytes ef = incident(0xA0, row.begin, row.end);
        const auto event = events(ef).front();
        const auto fault = faults(ef).front();
        EXPECT_EQ(event.type, 0xA0);
        EXPECT_EQ(fault.type, 0xA0);
        EXPECT_EQ(event.registration, "D-EF 7");
        EXPECT_EQ(event.reserved1 + event.reserved2 + fault.reserved1 + fault.reserved2, 0);
        for (const QDateTime& begin : {event.begin, fault.begin})
            EXPECT_EQ(begin, timeOrNull(row.begin));
        for (const QDateTime& end : {event.end, fault.end})
            EXPECT_EQ(end, timeOrNull(row.end));
    }
}

} // namespace

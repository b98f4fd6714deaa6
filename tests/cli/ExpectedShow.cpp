#include "ExpectedShow.h"

#include <simulator/Nations.h>

#include <QDate>
#include <QJsonDocument>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <map>

namespace test {

namespace {

constexpr std::uint32_t notKnown = 0xFFFFFFFF;

QString hexadecimal(const sim::Bytes& bytes)
{
    return QString::fromStdString(sim::toHex(bytes)).remove(QLatin1Char(' '));
}

QJsonObject code(int number)
{
    return {{"code", number}};
}

QJsonObject nation(int numeric)
{
    const std::string alpha = sim::nationAlpha(static_cast<std::uint8_t>(numeric));
    return {
        {"numeric", numeric},
        {"alpha", alpha.empty() ? QJsonValue() : QJsonValue(QString::fromStdString(alpha))}};
}

/// Reads the fields of records, one behind the other.
class Reader
{
  public:
    Reader(const sim::Bytes& bytes, Zone zone, std::size_t position = 0)
        : m_bytes(&bytes), m_zone(zone), m_position(position)
    {}

    bool has(std::size_t count) const { return m_position + count <= m_bytes->size(); }
    Zone zone() const { return m_zone; }

    std::uint32_t number(std::size_t count)
    {
        std::uint32_t value = 0;
        for (const std::uint8_t byte : bytes(count))
            value = value << 8 | byte;
        return value;
    }
    int byte() { return static_cast<int>(number(1)); }
    int word() { return static_cast<int>(number(2)); }
    qint64 odometer() { return number(3); }
    QJsonValue time() { return isoTime(number(4), m_zone); }
    QJsonValue cardDay() { return isoTime(number(4), Zone::Utc); }
    QJsonObject nationCode() { return nation(byte()); }

    sim::Bytes bytes(std::size_t count)
    {
        const sim::Bytes part = sim::slice(*m_bytes, m_position, count);
        m_position += count;
        return part;
    }
    QString hexadecimalBytes(std::size_t count) { return hexadecimal(bytes(count)); }

    /// Characters; a code page in front of them is always the first here.
    QString characters(std::size_t count)
    {
        QString text;
        for (const std::uint8_t letter : bytes(count)) {
            if (letter != 0)
                text += QChar(letter);
        }
        return text.trimmed();
    }
    QString text(std::size_t count)
    {
        byte();
        return characters(count);
    }
    QString name() { return text(35); }
    QString plate() { return text(13); }

  private:
    const sim::Bytes* m_bytes;
    Zone m_zone;
    std::size_t m_position;
};

using ReadRecord = std::function<QJsonObject(Reader&)>;
using IsUsed = std::function<bool(const sim::Bytes&)>;

/// True where the four bytes at @p offset are not 0.
IsUsed hasTimeAt(std::size_t offset)
{
    return [offset](const sim::Bytes& record) { return sim::readU32(record, offset) != 0; };
}

IsUsed hasCode()
{
    return [](const sim::Bytes& record) { return record.front() != 0; };
}

QJsonArray records(
    const sim::Bytes& ef, std::size_t head, std::size_t length, Zone zone, const IsUsed& isUsed,
    const ReadRecord& read)
{
    QJsonArray rows;
    for (std::size_t position = head; position + length <= ef.size(); position += length) {
        const sim::Bytes record = sim::slice(ef, position, length);
        if (!isUsed(record))
            continue;
        Reader reader(record, zone);
        rows.append(read(reader));
    }
    return rows;
}

void add(QJsonObject& to, const QJsonObject& more)
{
    for (auto each = more.begin(); each != more.end(); ++each)
        to.insert(each.key(), each.value());
}

// EFs of several kinds of cards

/// The first fields of EF_Identification.
QJsonObject origin(Reader& reader)
{
    QJsonObject object{{"issuing_nation", reader.nationCode()}};
    object["card_number"] = reader.characters(16);
    object["issuing_authority"] = reader.name();
    object["issued"] = reader.cardDay();
    object["valid_from"] = reader.cardDay();
    object["valid_until"] = reader.cardDay();
    return object;
}

QJsonValue degrees(Reader& reader, std::uint32_t time)
{
    const auto value = static_cast<std::int32_t>(reader.number(3) << 8) / 256;
    if (value == 0x7FFFFF || time == 0)
        return {};
    const bool isNegative = value < 0;
    const int size = std::abs(value);
    const double amount = size / 1000 + (size % 1000) / 10.0 / 60.0;
    return isNegative ? -amount : amount;
}

/// GNSSPlaceRecord; of an authentication that is not in the record @p authentication.
QJsonObject gnss(Reader& reader, const QJsonValue& authentication)
{
    QJsonObject object;
    const std::uint32_t time = reader.number(4);
    const int accuracy = reader.byte();
    object["position_time"] = isoTime(time, reader.zone());
    object["position_dilution"] = time == 0 || accuracy == 0xFF ? QJsonValue() : QJsonValue(accuracy / 10.0);
    object["latitude_degrees"] = degrees(reader, time);
    object["longitude_degrees"] = degrees(reader, time);
    object["position_authentication"] = time == 0 ? QJsonValue() : authentication;
    return object;
}

/// The same with the authentication behind it.
QJsonObject authenticatedGnss(Reader& reader)
{
    QJsonObject object = gnss(reader, {});
    const int status = reader.byte();
    if (!object["position_time"].isNull())
        object["position_authentication"] = code(status);
    return object;
}

/// What an EF of authentications says of each time.
std::map<std::uint32_t, QJsonValue> authentications(const sim::Bytes& ef)
{
    std::map<std::uint32_t, QJsonValue> states;
    records(ef, 2, 5, Zone::Utc, hasTimeAt(0), [&states](Reader& reader) {
        const std::uint32_t time = reader.number(4);
        states.emplace(time, code(reader.byte()));
        return QJsonObject();
    });
    return states;
}

// Driver cards

QJsonArray periodsOf(std::uint32_t date, const std::vector<std::uint32_t>& words, Zone zone)
{
    QJsonArray periods;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const auto minute = [&words](std::size_t index) { return words[index] & 0x7FF; };
        const bool isLast = i + 1 == words.size();
        periods.append(QJsonObject{
            {"date", isoTime(date, Zone::Utc).toString().left(10)},
            {"begin", isoTime(date + 60 * minute(i), zone)},
            {"end", isLast ? QJsonValue() : isoTime(date + 60 * minute(i + 1), zone)},
            {"duration_minutes",
             isLast ? QJsonValue() : QJsonValue(static_cast<int>(minute(i + 1) - minute(i)))},
            {"slot", code(static_cast<int>(words[i] >> 15 & 1))},
            {"driving_status", code(static_cast<int>(words[i] >> 14 & 1))},
            {"card_status", code(static_cast<int>(words[i] >> 13 & 1))},
            {"activity", code(static_cast<int>(words[i] >> 11 & 3))}});
    }
    return periods;
}

QJsonObject day(std::uint32_t date, const std::vector<std::uint32_t>& words, Zone zone)
{
    enum Sum
    {
        Rest,
        Availability,
        Work,
        Driving,
        Unknown
    };
    int sums[5] = {};
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        const bool nobodyKnows = (words[i] & 0x6000) == 0x2000;
        const auto sum = nobodyKnows ? Unknown : static_cast<Sum>(words[i] >> 11 & 3);
        sums[sum] += static_cast<int>(words[i + 1] & 0x7FF) - static_cast<int>(words[i] & 0x7FF);
    }
    if (!words.empty())
        sums[Unknown] += static_cast<int>(words.front() & 0x7FF);
    return {
        {"date", isoTime(date, Zone::Utc).toString().left(10)},
        {"rest_minutes", sums[Rest]},
        {"availability_minutes", sums[Availability]},
        {"work_minutes", sums[Work]},
        {"driving_minutes", sums[Driving]},
        {"unknown_minutes", sums[Unknown]},
        {"periods", periodsOf(date, words, zone)}};
}

QJsonArray days(const sim::Bytes& ef, Zone zone)
{
    QJsonArray all;
    const std::size_t length = ef.size() - 4;
    std::size_t position = sim::readU16(ef, 0);
    const std::size_t newest = sim::readU16(ef, 2);
    for (bool isNewest = false; !isNewest;) {
        const auto word = [&](std::size_t offset) {
            const auto at = [&](std::size_t byte) { return ef[4 + (position + byte) % length]; };
            return static_cast<std::uint32_t>(at(offset) << 8 | at(offset + 1));
        };
        const std::uint32_t size = word(2);
        std::vector<std::uint32_t> words;
        for (std::size_t offset = 12; offset < size; offset += 2)
            words.push_back(word(offset));
        all.append(day(word(4) << 16 | word(6), words, zone));
        isNewest = position == newest;
        position = (position + size) % length;
    }
    return all;
}

QJsonArray incidents(const sim::Bytes& ef, Zone zone)
{
    return records(ef, 0, 24, zone, hasCode(), [](Reader& reader) {
        QJsonObject row{{"type", code(reader.byte())}};
        row["begin"] = reader.time();
        row["end"] = reader.time();
        reader.byte();
        row["registration"] = reader.plate();
        return row;
    });
}

QJsonArray vehicles(const sim::Bytes& ef, bool isSecond, Zone zone)
{
    return records(ef, 2, isSecond ? 48 : 31, zone, hasTimeAt(10), [isSecond](Reader& reader) {
        QJsonObject row{{"odometer_begin_km", reader.odometer()}};
        row["odometer_end_km"] = reader.odometer();
        row["first_use"] = reader.time();
        row["last_use"] = reader.time();
        reader.byte();
        row["registration"] = reader.plate();
        reader.word();
        if (isSecond)
            row["vin"] = reader.characters(17);
        return row;
    });
}

QJsonArray places(const sim::Bytes& ef, const sim::Bytes& authentication, bool isSecond, Zone zone)
{
    const auto states = authentications(authentication);
    return records(ef, isSecond ? 2 : 1, isSecond ? 21 : 10, zone, hasTimeAt(0), [&](Reader& reader) {
        const std::uint32_t time = reader.number(4);
        QJsonObject row{{"time", isoTime(time, zone)}};
        row["entry_type"] = code(reader.byte());
        row["nation"] = reader.nationCode();
        row["region"] = code(reader.byte());
        row["odometer_km"] = reader.odometer();
        if (isSecond)
            add(row, gnss(reader, states.count(time) != 0 ? states.at(time) : QJsonValue()));
        return row;
    });
}

QJsonArray conditions(const sim::Bytes& ef, bool isSecond, Zone zone)
{
    return records(ef, isSecond ? 2 : 0, 5, zone, hasTimeAt(0), [](Reader& reader) {
        QJsonObject row{{"time", reader.time()}};
        row["type"] = code(reader.byte());
        return row;
    });
}

QJsonObject driverIdentification(const sim::Bytes& ef)
{
    Reader reader(ef, Zone::Utc);
    QJsonObject object = origin(reader);
    object["surname"] = reader.name();
    object["first_names"] = reader.name();
    QString date = reader.hexadecimalBytes(4);
    object["birth_date"] = date.insert(6, QLatin1Char('-')).insert(4, QLatin1Char('-'));
    object["language"] = reader.characters(2);
    return object;
}

QJsonObject licence(const sim::Bytes& ef)
{
    Reader reader(ef, Zone::Utc);
    QJsonObject object{{"issuing_authority", reader.name()}};
    object["issuing_nation"] = reader.nationCode();
    object["number"] = reader.characters(16);
    return object;
}

QJsonObject currentUse(const sim::Bytes& ef, Zone zone)
{
    Reader reader(ef, zone);
    QJsonObject object{{"begin", reader.time()}};
    object["vehicle_nation"] = reader.nationCode();
    object["registration"] = reader.plate();
    return object;
}

/// CardControlActivityDataRecord and CompanyActivityRecord have the same fields.
QJsonObject officeRecord(Reader& reader, const QString& codeKey)
{
    QJsonObject object{{codeKey, code(reader.byte())}};
    object["time"] = reader.time();
    object["card_type"] = code(reader.byte());
    object["card_nation"] = reader.nationCode();
    object["card_number"] = reader.characters(16);
    object["vehicle_nation"] = reader.nationCode();
    object["registration"] = reader.plate();
    object["download_period_begin"] = reader.time();
    object["download_period_end"] = reader.time();
    return object;
}

QJsonObject driverApplication(const sim::ApplicationDescription& card, bool isSecond, Zone zone)
{
    const auto ef = [&card](unsigned int fid) -> const sim::Bytes& { return contentOf(card, fid); };
    Reader lastDownload(ef(0x050E), zone);
    Reader control(ef(0x0508), zone);
    QJsonObject application{
        {"identification", driverIdentification(ef(0x0520))},
        {"download", QJsonObject{{"last_download", lastDownload.time()}}},
        {"driving_licence", licence(ef(0x0521))},
        {"current_use", currentUse(ef(0x0507), zone)},
        {"control_activity", officeRecord(control, "control_type")},
        {"days", days(ef(0x0504), zone)},
        {"vehicles", vehicles(ef(0x0505), isSecond, zone)},
        {"events", incidents(ef(0x0502), zone)},
        {"faults", incidents(ef(0x0503), zone)},
        {"places", places(ef(0x0506), ef(0x0526), isSecond, zone)},
        {"specific_conditions", conditions(ef(0x0522), isSecond, zone)}};
    if (!isSecond)
        return application;
    application["vehicle_units"] = records(ef(0x0523), 2, 10, zone, hasTimeAt(0), [](Reader& reader) {
        QJsonObject row{{"time", reader.time()}};
        row["manufacturer_code"] = reader.byte();
        row["device_id"] = reader.byte();
        row["software_version"] = reader.characters(4);
        return row;
    });
    const auto states = authentications(ef(0x0527));
    application["gnss_places"] = records(ef(0x0524), 2, 18, zone, hasTimeAt(0), [&](Reader& reader) {
        const std::uint32_t time = reader.number(4);
        QJsonObject row{{"time", isoTime(time, zone)}};
        add(row, gnss(reader, states.count(time) != 0 ? states.at(time) : QJsonValue()));
        row["odometer_km"] = reader.odometer();
        return row;
    });
    application["border_crossings"] = records(ef(0x0528), 2, 17, zone, hasTimeAt(2), [](Reader& reader) {
        QJsonObject row{{"nation_left", reader.nationCode()}};
        row["nation_entered"] = reader.nationCode();
        add(row, authenticatedGnss(reader));
        row["time"] = row["position_time"];
        row["odometer_km"] = reader.odometer();
        return row;
    });
    application["load_unload_operations"] =
        records(ef(0x0529), 2, 20, zone, hasTimeAt(0), [](Reader& reader) {
            QJsonObject row{{"time", reader.time()}};
            row["operation"] = code(reader.byte());
            add(row, authenticatedGnss(reader));
            row["odometer_km"] = reader.odometer();
            return row;
        });
    application["load_type_entries"] = records(ef(0x0530), 2, 5, zone, hasTimeAt(0), [](Reader& reader) {
        QJsonObject row{{"time", reader.time()}};
        row["load_type"] = code(reader.byte());
        return row;
    });
    return application;
}

// Workshop cards

QJsonObject workshopIdentification(const sim::Bytes& ef)
{
    Reader reader(ef, Zone::Utc);
    QJsonObject object = origin(reader);
    object["workshop_name"] = reader.name();
    object["workshop_address"] = reader.name();
    object["surname"] = reader.name();
    object["first_names"] = reader.name();
    object["language"] = reader.characters(2);
    return object;
}

void addEquipment(QJsonObject& row, const QString& key, Reader& reader)
{
    row[key + "_serial_number"] = static_cast<qint64>(reader.number(4));
    row[key + "_month_year"] = reader.hexadecimalBytes(2);
    row[key + "_type"] = reader.byte();
    row[key + "_manufacturer_code"] = reader.byte();
}

/// A calibration, and its seals into @p seals.
QJsonObject calibration(Reader& reader, bool isSecond, QJsonArray& seals)
{
    QJsonObject row{{"purpose", code(reader.byte())}};
    row["vin"] = reader.characters(17);
    row["vehicle_nation"] = reader.nationCode();
    row["registration"] = reader.plate();
    row["vehicle_constant_w_pulses_per_km"] = reader.word();
    row["equipment_constant_k_pulses_per_km"] = reader.word();
    row["tyre_circumference_l_eighth_mm"] = reader.word();
    row["tyre_size"] = reader.characters(15);
    row["authorised_speed_km_per_h"] = reader.byte();
    row["old_odometer_km"] = reader.odometer();
    row["odometer_km"] = reader.odometer();
    row["old_time"] = reader.time();
    row["time"] = reader.time();
    row["next_calibration"] = reader.cardDay();
    row["vu_part_number"] = reader.characters(16);
    addEquipment(row, "vu", reader);
    addEquipment(row, "sensor", reader);
    if (!isSecond)
        return row;
    addEquipment(row, "gnss", reader);
    addEquipment(row, "remote_communication", reader);
    row["refuses_first_generation_cards"] = (reader.byte() & 1) != 0;
    const int count = reader.byte();
    for (int i = 0; i < count; ++i) {
        QJsonObject seal{{"calibration_time", row["time"]}, {"vin", row["vin"]}};
        seal["equipment_type"] = code(reader.byte());
        seal["manufacturer_code"] = reader.characters(2);
        seal["identifier"] = reader.characters(8);
        seals.append(seal);
    }
    return row;
}

QJsonObject workshopApplication(const sim::ApplicationDescription& card, bool isSecond, Zone zone)
{
    const auto ef = [&card](unsigned int fid) -> const sim::Bytes& { return contentOf(card, fid); };
    QJsonArray seals;
    QJsonObject application{
        {"identification", workshopIdentification(ef(0x0520))},
        {"calibration_counters",
         QJsonObject{
             {"calibrations_total", sim::readU16(ef(0x050A), 0)},
             {"calibrations_since_download", sim::readU16(ef(0x0509), 0)}}},
        {"calibrations",
         records(ef(0x050A), isSecond ? 4 : 3, isSecond ? 178 : 105, zone, hasCode(), [&](Reader& reader) {
             return calibration(reader, isSecond, seals);
         })}};
    if (!isSecond)
        return application;
    application["seals"] = seals;
    application["calibration_additions"] = records(ef(0x0531), 2, 27, zone, hasTimeAt(0), [](Reader& reader) {
        QJsonObject row{{"old_time", reader.time()}};
        row["vin"] = reader.characters(17);
        row["default_load_type"] = code(reader.byte());
        row["nation"] = reader.nationCode();
        row["nation_time"] = reader.time();
        return row;
    });
    return application;
}

// Company cards

QJsonObject companyIdentification(const sim::Bytes& ef)
{
    Reader reader(ef, Zone::Utc);
    QJsonObject object = origin(reader);
    object["company_name"] = reader.name();
    object["company_address"] = reader.name();
    object["language"] = reader.characters(2);
    return object;
}

QJsonObject companyApplication(
    const sim::ApplicationDescription& card, const sim::ApplicationDescription* identified, Zone zone)
{
    return {
        {"identification",
         identified ? QJsonValue(companyIdentification(contentOf(*identified, 0x0520))) : QJsonValue()},
        {"company_activities", records(contentOf(card, 0x050D), 2, 46, zone, hasCode(), [](Reader& reader) {
             return officeRecord(reader, "activity");
         })}};
}

int typeOf(const CardFile& download)
{
    return contentOf(download.card.applications.front(), 0x0501).front();
}

QJsonObject application(const CardFile& download, std::size_t index, Zone zone)
{
    const sim::ApplicationDescription& card = download.card.applications.at(index);
    const bool isSecond = index == 1;
    switch (typeOf(download)) {
    case 1:
        return driverApplication(card, isSecond, zone);
    case 2:
        return workshopApplication(card, isSecond, zone);
    default:
        break;
    }
    // The first application shows its identification to nobody.
    const bool isIdentified = isSecond || download.isOneApplication;
    return companyApplication(card, isIdentified ? &download.card.applications.at(1) : nullptr, zone);
}

bool isSecondGeneration(const CardFile& download)
{
    return download.card.applications.size() == 2 && !download.isOneApplication;
}

QJsonValue sorted(const QJsonArray& array)
{
    std::vector<std::pair<QByteArray, QJsonValue>> items;
    for (const QJsonValue& each : array)
        items.emplace_back(QJsonDocument(QJsonArray{each}).toJson(QJsonDocument::Compact), each);
    std::sort(items.begin(), items.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    QJsonArray result;
    for (const auto& item : items)
        result.append(item.second);
    return result;
}

} // namespace

QJsonValue isoTime(std::uint32_t time, Zone zone)
{
    if (time == 0 || time == notKnown)
        return {};
    const std::time_t seconds = time;
    std::tm parts{};
    if (zone == Zone::Utc)
        gmtime_r(&seconds, &parts);
    else
        localtime_r(&seconds, &parts);
    char text[40];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S%z", &parts);
    const QString whole = QString::fromLatin1(text);
    const QString offset = whole.right(5);
    return whole.left(whole.size() - 5) + (offset == "+0000" ? "Z" : offset.left(3) + ':' + offset.right(2));
}

QJsonArray expectedApplications(const CardFile& download, Zone zone)
{
    QJsonArray applications;
    for (std::size_t i = 0; i < (isSecondGeneration(download) ? 2u : 1u); ++i) {
        QJsonObject object = application(download, i, zone);
        object["application"] = i == 0 ? "TACHO" : "SMRDT";
        object["generation"] = static_cast<int>(i + 1);
        applications.append(object);
    }
    return applications;
}

QJsonObject expectedCard(const CardFile& download)
{
    sim::ApplicationDescription master;
    master.files = download.card.masterFiles;
    const sim::Bytes& icc = contentOf(master, 0x0002);
    const sim::Bytes& ic = contentOf(master, 0x0005);
    const bool isSecond = isSecondGeneration(download);
    const bool isVersion2 =
        isSecond && sim::readU16(contentOf(download.card.applications.at(1), 0x0501), 1) == 0x0101;
    Reader approval(icc, Zone::Utc, 9);
    return {
        {"type", code(typeOf(download))},
        {"generation", code(isSecond ? 2 : 1)},
        {"version", isVersion2 ? QJsonValue("2.2") : QJsonValue()},
        {"chip_serial_number", hexadecimal(sim::slice(ic, 0, 4))},
        {"approval_number", approval.characters(8)},
        {"card_serial_number", hexadecimal(sim::slice(icc, 1, 4))}};
}

QJsonObject expectedFigures(const QJsonArray& days)
{
    const QJsonObject last = days.last().toObject();
    const auto numberOf = [](const QJsonValue& day) {
        return QDate::fromString(day.toObject()["date"].toString(), Qt::ISODate).toJulianDay();
    };
    const auto busyMinutes = [](const QJsonValue& day) {
        return day.toObject()["driving_minutes"].toInt() + day.toObject()["work_minutes"].toInt();
    };
    int week = 0;
    int extended = 0;
    int shortRests = 0;
    for (const QJsonValue& day : days) {
        if (numberOf(day) <= numberOf(last) - 7)
            continue;
        week += busyMinutes(day);
        extended += busyMinutes(day) > 540 ? 1 : 0;
        shortRests += 1440 - busyMinutes(day) < 660 ? 1 : 0;
    }
    return {
        {"date", last["date"]},
        {"remaining_driving_day_minutes", 540 - busyMinutes(last)},
        {"remaining_driving_week_minutes", std::max(0, 3360 - week)},
        {"remaining_extended_days", std::max(0, 2 - extended)},
        {"remaining_reduced_rests", std::max(0, 3 - shortRests)}};
}

QJsonValue comparable(const QJsonValue& value)
{
    if (value.isArray()) {
        QJsonArray array;
        for (const QJsonValue& each : value.toArray())
            array.append(comparable(each));
        return sorted(array);
    }
    if (!value.isObject())
        return value;
    QJsonObject object = value.toObject();
    if (object.contains("code"))
        object.remove("name");
    for (auto each = object.begin(); each != object.end(); ++each) {
        if (each.key().endsWith("_degrees") && each.value().isDouble())
            each.value() = static_cast<double>(std::llround(each.value().toDouble() * 1e6));
        else
            each.value() = comparable(each.value());
    }
    return object;
}

} // namespace test

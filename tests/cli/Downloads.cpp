#include "Downloads.h"

#include <simulator/DriverCard.h>
#include <support/CardKind.h>
#include <support/ExpectedCompany.h>
#include <support/ExpectedDriver.h>
#include <support/ExpectedWorkshop.h>
#include <support/FileRecords.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace test {

namespace {

QByteArray fileOf(const sim::Bytes& image)
{
    return QByteArray(reinterpret_cast<const char*>(image.data()), static_cast<int>(image.size()));
}

/// A company card's download with the second application's records of the second generation's type.
QByteArray withTypes(const QByteArray& file)
{
    QByteArray changed = file;
    int chips = 0;
    for (const FileRecord& record : recordsOf(file)) {
        if (record.fid == 0x0002)
            ++chips;
        if (chips == 2)
            changed[record.offset + 2] = static_cast<char>(record.type + 2);
    }
    return changed;
}

CardFile companyDownload(const char* name, const sim::CardDescription& card, bool isOneApplication)
{
    const QByteArray file = fileOf(expectedCompanyImageG2(card));
    return {name, card, isOneApplication ? file : withTypes(file), isOneApplication};
}

} // namespace

const std::vector<CardFile>& realDownloads()
{
    static const std::vector<CardFile> downloads = [] {
        WorkshopCountsG2 workshop;
        WorkshopCountsG2 workshopV2;
        workshopV2.version2 = true;
        CompanyCountsG2 company;
        company.version2 = true;
        const sim::CardDescription workshops[] = {
            workshopCard(), workshopCardG2(workshop), workshopCardG2(workshopV2)};
        const sim::CardDescription companies[] = {companyCard(), companyCardG2({}), companyCardG2(company)};
        return std::vector<CardFile>{
            {"driver g1", driverCard(), fileOf(expectedDriverImage(driverCard()))},
            {"driver g2", driverCardG2(), fileOf(expectedDriverImageG2(driverCardG2()))},
            {"driver g2v2", driverCardV2(), fileOf(expectedDriverImageG2(driverCardV2()))},
            {"workshop g1", workshops[0], fileOf(expectedWorkshopImage(workshops[0]))},
            {"workshop g2", workshops[1], fileOf(expectedWorkshopImageG2(workshops[1]))},
            {"workshop g2v2", workshops[2], fileOf(expectedWorkshopImageG2(workshops[2]))},
            {"company g1", companies[0], fileOf(expectedCompanyImage(companies[0]))},
            companyDownload("company g2", companies[1], false),
            companyDownload("company g2v2", companies[2], false),
            companyDownload("company g2 as the library writes it", companies[1], true),
        };
    }();
    return downloads;
}

const std::vector<CardFile>& smallDownloads()
{
    static const std::vector<CardFile> downloads = [] {
        std::vector<CardFile> made;
        for (const CardKind& kind :
             {driverKind(), driverG2Kind(), driverV2Kind(), workshopKind(), workshopV2Kind(), companyKind()})
            made.push_back({kind.name, kind.card, fileOf(kind.image(kind.card, 0))});
        made.push_back(companyDownload("companyG2", companyG2Kind().card, false));
        made.push_back(companyDownload("companyV2", companyV2Kind().card, false));
        made.push_back(companyDownload("companyG2AsOneApplication", companyG2Kind().card, true));
        return made;
    }();
    return downloads;
}

const CardFile& smallDownload(const char* name)
{
    const auto& all = smallDownloads();
    const auto found = std::find_if(
        all.begin(), all.end(), [name](const CardFile& each) { return std::string(each.name) == name; });
    if (found == all.end())
        throw std::invalid_argument(name);
    return *found;
}

QByteArray driverFile(const sim::DriverParameters& parameters)
{
    return downloadOf(sim::makeDriverCardG1(parameters));
}

QByteArray driverFileG2(const sim::DriverParametersG2& parameters)
{
    return downloadOf(sim::makeDriverCardG2(parameters));
}

QByteArray downloadOf(const sim::CardDescription& card)
{
    return fileOf(card.applications.size() == 1 ? expectedDriverImage(card) : expectedDriverImageG2(card));
}

sim::Bytes& contentOf(sim::CardDescription& card, std::size_t application, unsigned int fid)
{
    for (sim::FileDescription& file : card.applications.at(application).files) {
        if (file.fid == fid)
            return file.content;
    }
    throw std::invalid_argument("the card has no such EF");
}

const sim::Bytes& contentOf(const sim::ApplicationDescription& application, unsigned int fid)
{
    static const sim::Bytes none;
    for (const sim::FileDescription& file : application.files) {
        if (file.fid == fid)
            return file.content;
    }
    return none;
}

void put(QByteArray& bytes, int offset, const QByteArray& text)
{
    bytes.replace(offset, text.size(), text);
}

sim::Bytes activityFile(const std::vector<ActivityDay>& days, std::size_t length)
{
    sim::Bytes buffer;
    std::size_t newest = 0;
    std::uint32_t before = 0;
    for (const ActivityDay& day : days) {
        newest = buffer.size();
        const auto size = static_cast<std::uint32_t>(12 + 2 * day.changes.size());
        sim::appendU16(buffer, before);
        sim::appendU16(buffer, size);
        sim::appendU32(buffer, day.date);
        sim::appendU32(buffer, 0); // presence counter and distance
        for (const std::uint16_t change : day.changes)
            sim::appendU16(buffer, change);
        before = size;
    }
    buffer.resize(length);
    sim::Bytes file;
    sim::appendU16(file, 0);
    sim::appendU16(file, static_cast<std::uint32_t>(newest));
    sim::appendBytes(file, buffer);
    return file;
}

} // namespace test

#include "ImageRules.h"

#include <ostream>
#include <sstream>
#include <string>

namespace test {

namespace {

bool isOf(const CardFile& download, const char* kind)
{
    return std::string(download.name).find(kind) == 0;
}

bool isVersion2(const CardFile& download)
{
    const std::string name = download.name;
    return name.find("V2") != std::string::npos || name.find("g2v2") != std::string::npos;
}

bool isCertificate(unsigned int fid)
{
    return fid >= 0xC100;
}

/// What a company card's object adds to the error of an EF.
std::string companyText(unsigned int fid, bool isSecond)
{
    switch (fid) {
    case 0x0501:
        return "Error reading EF_Application_Identification:";
    case 0x050D:
        return "Error reading EF_Company_Activity:";
    case 0x0520:
        return "Error reading EF_Identification:";
    case 0x0525:
        return "Error reading EF_Application_Identification_V2:";
    case 0xC100:
        return isSecond ? "Error reading EF_MA_Certificate:" : "Error reading EF_Card_Certificate:";
    case 0xC108:
        return "Error reading EF_CA_Certificate:";
    default:
        return "Error reading EF_Link_Certificate:";
    }
}

} // namespace

const std::vector<unsigned int>& knownEfs()
{
    static const std::vector<unsigned int> efs = {
        0x0002, 0x0005, 0x0501, 0x0502, 0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508,
        0x0509, 0x050A, 0x050D, 0x050E, 0x0520, 0x0521, 0x0522, 0x0523, 0x0524, 0x0525,
        0x0526, 0x0527, 0x0528, 0x0529, 0x0530, 0x0531, 0xC100, 0xC101, 0xC108, 0xC109};
    return efs;
}

Selection selectionOf(const QByteArray& file)
{
    constexpr int header = 5;
    const auto byte = [&file](int at) {
        return static_cast<unsigned int>(static_cast<unsigned char>(file.at(at)));
    };
    Selection selection;
    for (int at = 0; at + header <= file.size();) {
        const int length = static_cast<int>(byte(at + 3) << 8 | byte(at + 4));
        const int start = at + header;
        at = start;
        if (start + length > file.size())
            continue;
        const unsigned int type = byte(start - 3);
        selection.types.insert(type);
        selection.efs.insert({{byte(start - 5) << 8 | byte(start - 4), type}, {start, length}});
        at += length;
    }
    return selection;
}

bool isCompany(const CardFile& download)
{
    return isOf(download, "company");
}

std::vector<unsigned int> neededEfs(const CardFile& download, bool isSecond)
{
    std::vector<unsigned int> efs = {0x0501, 0xC100, 0xC108, 0x050D};
    if (isCompany(download) && isSecond)
        efs = {0x0520, 0x0501, 0xC100, 0xC108, 0xC109, 0x050D};
    if (isOf(download, "driver"))
        efs = {0x0520, 0x0501, 0x0502, 0x0503, 0x0504, 0x0505};
    if (isOf(download, "workshop")) {
        efs = {0x0520, 0x0501, 0x050A, 0x0502, 0x0503, 0x0504, 0x0505, 0x0506, 0x0507, 0x0508};
        if (isSecond)
            efs.insert(efs.end(), {0x0523, 0x0524});
        efs.push_back(0x0522);
    }
    if (isSecond && isVersion2(download))
        efs.push_back(0x0525);
    return efs;
}

std::optional<Chain> expectedFailure(const CardFile& download, const Selection& good, const Selection& left)
{
    const bool isSecond = left.hasSecond();
    const unsigned int type = isSecond ? 2 : 0;
    if (!isSecond && left.types.count(0) == 0)
        return noApplication(false);

    constexpr int typeAndVersion = 3;
    const auto application = left.efs.find({0x0501, type});
    if (application == left.efs.end())
        return missingEf(0x0501);
    if (application->second.length < typeAndVersion)
        return shortEf(application->second.length);
    const auto goodApplication = good.efs.find({0x0501, type});
    if (goodApplication == good.efs.end() || goodApplication->second.start != application->second.start)
        return std::nullopt;

    for (const unsigned int fid : neededEfs(download, isSecond)) {
        const auto found = left.efs.find({fid, type});
        const auto whole = good.efs.find({fid, type});
        Chain failure;
        if (found == left.efs.end()) {
            failure = missingEf(fid);
        } else if (isCertificate(fid) && isSecond) {
            // It says itself how long it is, and is taken for empty when it is too short to say so.
            constexpr int lengthField = 5;
            if (whole == good.efs.end() || found->second.start != whole->second.start)
                return std::nullopt;
            if (found->second.length >= lengthField && found->second.length < whole->second.length)
                failure = shortEf(found->second.length);
        } else if (found->second.length < whole->second.length) {
            failure = shortEf(found->second.length);
        }
        if (failure.empty())
            continue;
        if (isCompany(download))
            failure.push_back(lib(companyText(fid, isSecond), failure.front().id));
        return failure;
    }
    return Chain{};
}

Chain withoutRequested(Chain failure)
{
    for (Entry& entry : failure) {
        const std::string words = "requested:";
        const std::size_t at = entry.message.find(words);
        if (at != std::string::npos)
            entry.message.resize(at + words.size());
    }
    return failure;
}

Chain missingEf(unsigned int fid)
{
    std::ostringstream hex;
    hex << std::hex << fid;
    return {
        lib("memSelectFile(): Dataset not found"),
        lib("readFromMem() memSelectFile() Failed: ID " + hex.str())};
}

Chain shortEf(int length)
{
    return {lib("readFromMem() invalid dataset size:" + std::to_string(length) + "requested:", 6700)};
}

Chain noApplication(bool isTooShort)
{
    constexpr unsigned int fileNotFound = 0x6A82;
    return {
        lib(isTooShort ? "memSelectFile(): Not enough data" : "memSelectFile(): Dataset not found",
            fileNotFound),
        lib("read() Identify Card Generation failed", fileNotFound)};
}

void PrintTo(const CardFile& download, std::ostream* stream)
{
    *stream << download.name;
}

} // namespace test

#include "DriverCard.h"

#include "CardFiles.h"

namespace sim {

namespace {

using namespace rights;

// Annex 1B, Appendix 2: what the driver card alone has.
constexpr FileRow<DriverContents> DriverFiles[] = {
    {0x0520, &DriverContents::identification, Always, Never, true},
    {0x050E, &DriverContents::cardDownload, Always, Always, true},
    {0x0521, &DriverContents::drivingLicenceInfo, Always, Never, true},
};

// Annex 1C, Appendix 2: what the driver card alone has.
constexpr FileRow<DriverContentsG2> DriverFilesG2[] = {
    {0x0520, &DriverContentsG2::identification, Always, Never, true, 6},
    {0x050E, &DriverContentsG2::cardDownload, Always, Always, true, 7},
    {0x0521, &DriverContentsG2::drivingLicenceInfo, Always, Never, true, 10},
};

CardDescription cardFrom(const DriverContents& contents)
{
    CardDescription card = cardWith(contents);
    std::vector<FileDescription> files;
    addFiles(files, DriverFiles, contents);
    addUsageFiles(files, contents);
    addApplicationG1(card, contents, std::move(files));
    return card;
}

} // namespace

CardDescription makeDriverCardG1(const DriverParameters& parameters)
{
    return cardFrom(makeDriverContents(parameters));
}

CardDescription makeDriverCardG2(const DriverParametersG2& parameters)
{
    const DriverContentsG2 contents = makeDriverContentsG2(parameters);
    CardDescription card = cardFrom(contents.first);
    std::vector<FileDescription> files;
    addFiles(files, DriverFilesG2, contents);
    addUsageFilesG2(files, contents);
    addApplicationG2(card, contents, std::move(files), parameters.curve, Equipment::Driver);
    return card;
}

} // namespace sim

#include "WorkshopCard.h"

#include "CardFiles.h"

namespace sim {

namespace {

using namespace rights;

// Annex 1B, Appendix 2: what the workshop card alone has.
constexpr FileRow<WorkshopContents> WorkshopRows[] = {
    {0x0520, &WorkshopContents::identification, Always, Never, true},
    {0x0509, &WorkshopContents::cardDownload, Always, Always, true},
    {0x050A, &WorkshopContents::calibration, Always, Secure, true},
    {0x050B, &WorkshopContents::sensorInstallationData, Secure, Secure, false},
};

// Annex 1C, Appendix 2: what the workshop card alone has.
constexpr FileRow<WorkshopContentsG2> WorkshopRowsG2[] = {
    {0x0520, &WorkshopContentsG2::identification, Always, Never, true, 6},
    {0x0509, &WorkshopContentsG2::cardDownload, Always, Always, true, 7},
    {0x050A, &WorkshopContentsG2::calibration, Always, Secure, true, 10},
    {0x050B, &WorkshopContentsG2::sensorInstallationData, Secure, Secure, false, 11, Secure},
    {0x0531, &WorkshopContentsG2::calibrationAddData, Always, Secure, true, 28},
};

CardDescription cardFrom(const WorkshopContents& contents)
{
    CardDescription card = cardWith(contents);
    std::vector<FileDescription> files;
    addFiles(files, WorkshopRows, contents);
    addUsageFiles(files, contents);
    addApplicationG1(card, contents, std::move(files));
    return card;
}

} // namespace

CardDescription makeWorkshopCardG1(const WorkshopParameters& parameters)
{
    return cardFrom(makeWorkshopContents(parameters));
}

CardDescription makeWorkshopCardG2(const WorkshopParametersG2& parameters)
{
    const WorkshopContentsG2 contents = makeWorkshopContentsG2(parameters);
    CardDescription card = cardFrom(contents.first);
    std::vector<FileDescription> files;
    addFiles(files, WorkshopRowsG2, contents);
    addUsageFilesG2(files, contents);
    addApplicationG2(card, contents, std::move(files), parameters.curve, Equipment::Workshop);
    return card;
}

} // namespace sim

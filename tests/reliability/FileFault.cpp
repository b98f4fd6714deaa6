#include "FileFault.h"

#include "RememberingSigner.h"
#include <support/DebugStream.h>
#include <support/FileRecords.h>

#include <QDir>

#include <algorithm>
#include <set>

namespace test {

using testing::IsEmpty;

namespace {

constexpr unsigned short fidIcc = 0x0002;
constexpr std::size_t headerLength = 5;

#ifdef SCARD_SANITIZED
// Several times slower. A record has five places, so that each seventh comes to all of them in turn.
constexpr std::size_t strideOfPlaces = 7;
#else
constexpr std::size_t strideOfPlaces = 1;
#endif

int openDescriptors()
{
    return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

} // namespace

FileFault::FileFault() : description(withRememberedSignatures(kind.card)), image(kind.image(description, 0))
{
    // The first one opens what stays open as long as the host lives.
    expectWholeAndStamped(downloadFresh(), image);
    removeDownloads();
    m_openDescriptors = openDescriptors();
}

Download FileFault::downloadFresh(scard::FilenameRegion region)
{
    return downloadOf(description, region);
}

Download FileFault::downloadOf(const sim::CardDescription& card, scard::FilenameRegion region)
{
    insert(card);
    pcsc().clearCalls();
    DebugStream::clear();
    return host.download(region);
}

void FileFault::expectFailed(const Download& result, const Chain& expected)
{
    EXPECT_EQ(chain(result.failure), expected);
    EXPECT_FALSE(result.card);
    EXPECT_EQ(result.errors, 0);
    EXPECT_THAT(chain(result.closeFailure), IsEmpty());
    EXPECT_THAT(written(), testing::Each(false));
    EXPECT_EQ(card().commandCount(), commandsBeforeStamp());
    EXPECT_EQ(pcsc().connectedCards(), 0u);
    EXPECT_EQ(pcsc().openContexts(), 1u); // the host's
    EXPECT_EQ(pcsc().listsNotFreed(), 0u);
    EXPECT_EQ(openDescriptors(), m_openDescriptors);
}

void FileFault::expectNextDownloadToWork(scard::FilenameRegion region)
{
    expectWholeAndStamped(downloadFresh(region), image);
}

void FileFault::expectWholeAndStamped(const Download& result, const sim::Bytes& expectedImage)
{
    EXPECT_THAT(chain(result.failure), IsEmpty());
    EXPECT_EQ(bytes(result.image), expectedImage);
    EXPECT_THAT(written(), testing::Each(true));
    EXPECT_EQ(card().commandCount(), kind.steps.size());
}

std::vector<bool> FileFault::written()
{
    std::vector<bool> changed;
    if (kind.isCompany())
        return changed;
    for (const sim::ApplicationDescription& application : description.applications) {
        const auto before = std::find_if(
            application.files.begin(), application.files.end(),
            [this](const sim::FileDescription& file) { return file.fid == kind.writtenFid; });
        changed.push_back(*card().file(application.aid, kind.writtenFid) != before->content);
    }
    return changed;
}

Chain FileFault::errorOfRoom(std::size_t room, const std::string& reason) const
{
    // What the save of a first application ends with is not asked: of a card with two, the second's first
    // record is what finds no room then.
    const auto all = recordsOf(image);
    const auto last =
        std::find_if(all.rbegin(), all.rend(), [](const auto& record) { return record.fid == fidIcc; });
    const std::size_t from = std::max(room, last->offset);
    const auto failing =
        std::find_if(all.begin(), all.end(), [from](const auto& record) { return from < record.end(); });

    Chain error = kind.nothingToSave();
    std::replace(
        error.begin(), error.end(), lib("writeDatasetToFile(): no valid data"),
        lib((failing->type % 2 == 1 ? "writeSignatureToFile() write failed: "
                                    : "writeDatasetToFile() write failed: ") +
            reason));
    return error;
}

Chain FileFault::errorOfNoFile()
{
    return {lib("saveToFile(): File not opened"), lib("Failed at saving card data to file")};
}

std::vector<std::size_t> FileFault::placesToStop() const
{
    std::set<std::size_t> places;
    std::size_t withinHeader = 1;
    for (const auto& record : recordsOf(image)) {
        places.insert(
            {record.offset, record.offset + withinHeader, record.begin(), record.begin() + record.length / 2,
             record.end() - 1});
        withinHeader = withinHeader % (headerLength - 1) + 1;
    }
    std::vector<std::size_t> tried;
    std::size_t number = 0;
    for (const std::size_t place : places) {
        if (number++ % strideOfPlaces == 0)
            tried.push_back(place);
    }
    return tried;
}

void FileFault::expectCutFile(std::size_t size) const
{
    const QStringList files = downloads();
    ASSERT_EQ(files.size(), 1);
    const sim::Bytes content = bytes(fileContent(files.front()));
    EXPECT_EQ(content.size(), size);
    EXPECT_TRUE(content.size() <= image.size() && std::equal(content.begin(), content.end(), image.begin()));
}

std::size_t FileFault::commandsBeforeStamp() const
{
    return static_cast<std::size_t>(std::count_if(
        kind.steps.begin(), kind.steps.end(), [](const Step& step) { return step.phase != Phase::Stamp; }));
}

std::string nameOfKind(const testing::TestParamInfo<CardKind>& info)
{
    return info.param.name;
}

std::vector<CardKind> allKinds()
{
    return {driverKind(),     driverG2Kind(), driverV2Kind(),  workshopKind(), workshopG2Kind(),
            workshopV2Kind(), companyKind(),  companyG2Kind(), companyV2Kind()};
}

} // namespace test

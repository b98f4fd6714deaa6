#pragma once

#include <pcsc/CardInReader.h>
#include <support/CardKind.h>

#include <cstddef>
#include <vector>

namespace test {

/// One kind of small card, and a "/tmp/" in which its download's file meets with something.
class FileFault : public CardInReader, public testing::WithParamInterface<CardKind>
{
  protected:
    FileFault();

    /// A download of a card that nobody has downloaded before.
    Download downloadFresh(scard::FilenameRegion region = scard::RegionDDD);
    Download downloadOf(const sim::CardDescription& card, scard::FilenameRegion region = scard::RegionDDD);

    /// The download has ended with @p expected, the card has got no command of the stamp, and nothing is left
    /// open.
    void expectFailed(const Download& result, const Chain& expected);

    /// The same download where nothing is in its way.
    void expectNextDownloadToWork(scard::FilenameRegion region = scard::RegionDDD);
    void expectWholeAndStamped(const Download& result, const sim::Bytes& expectedImage);

    /// What the last download has written to the card, first application first.
    std::vector<bool> written();

    /// The error of a save that has room for so many bytes; the disk calls that @p reason.
    Chain errorOfRoom(std::size_t room, const std::string& reason) const;
    static Chain errorOfNoFile();

    /// Sizes at which a file may have to stop: each side of each header and payload, and within them.
    std::vector<std::size_t> placesToStop() const;

    /// The only file in "/tmp/" is the image's beginning of this size.
    void expectCutFile(std::size_t size) const;

    /// Commands before the first one that follows the save.
    std::size_t commandsBeforeStamp() const;

    const CardKind& kind = GetParam();
    const sim::CardDescription description;
    const sim::Bytes image;
    Host host;

  private:
    int m_openDescriptors = 0;
};

std::string nameOfKind(const testing::TestParamInfo<CardKind>& info);

/// All nine kinds.
std::vector<CardKind> allKinds();

} // namespace test

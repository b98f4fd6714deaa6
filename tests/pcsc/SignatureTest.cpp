// Hash and signature over the EF that is selected.
#include "CardInReader.h"

#include <support/ErrorChain.h>

#include <gmock/gmock.h>

namespace {

using namespace test;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string tacho("\xFFTACHO", 6);

class SignatureTest : public CardInReader
{
  protected:
    SignatureTest() : generic(connect(), QDateTime::currentDateTimeUtc(), scard::RegionDDD)
    {
        EXPECT_THAT(chain(generic.ScSelectFile(tacho)), IsEmpty());
        EXPECT_THAT(chain(generic.ScSelectFile(0x0520)), IsEmpty());
        card().clearLog();
    }

    scard::SCardGeneric generic;
};

TEST_F(SignatureTest, HashAndSignatureAreTheseBytes)
{
    EXPECT_THAT(generic.readSignature(0x0520, false), SizeIs(128));
    EXPECT_THAT(commands(), ElementsAre("80 2A 90 00", "00 2A 9E 9A 80"));
}

TEST_F(SignatureTest, TheSecondGenerationAsksFor64Bytes)
{
    card().failAt(1, sim::Fault::raw(sim::Bytes(66, 0x90)));
    // Not a status word of success: only the command counts here.
    EXPECT_THAT(thrown([&] { generic.readSignature(0x0520, true); }), SizeIs(3));
    EXPECT_THAT(commands(), ElementsAre("80 2A 90 00", "00 2A 9E 9A 40"));
}

TEST_F(SignatureTest, TheSignatureIsExactlyWhatTheCardAnswered)
{
    sim::Bytes answer(64, 0xAB);
    sim::appendU16(answer, 0x9000);
    card().failAt(1, sim::Fault::raw(answer));
    const std::vector<unsigned char> signature = generic.readSignature(0x0520, true);
    EXPECT_THAT(signature, SizeIs(64));
    EXPECT_THAT(signature, Each(0xAB));
}

TEST_F(SignatureTest, AShorterSignatureIsNoError)
{
    card().failAt(1, sim::Fault::shortAnswer(100));
    EXPECT_THAT(generic.readSignature(0x0520, false), SizeIs(100));
}

TEST_F(SignatureTest, ARefusedHashNamesTheFid)
{
    card().failAt(0, sim::Fault::status(0x6985));
    EXPECT_THAT(
        thrown([&] { generic.readSignature(0x0520, false); }),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6985), lib("ScPerformHashOfFile Failed ", 0x6985),
            lib("readHash() ScPerformHashOfFile() Failed: ID520", 0x6985)));
    EXPECT_THAT(commands(), SizeIs(1));
}

TEST_F(SignatureTest, ARefusedSignatureNamesTheFid)
{
    card().failAt(1, sim::Fault::status(0x6400));
    EXPECT_THAT(
        thrown([&] { generic.readSignature(0x0520, false); }),
        ElementsAre(
            lib("ScDataTransfer failed", 0x6400), lib("ScComputeHashOfFile Failed ", 0x6400),
            lib("readHash() ScComputeHashOfFile() Failed: ID520", 0x6400)));
}

TEST_F(SignatureTest, AFailedSignatureLeavesTheVectorAlone)
{
    std::vector<unsigned char> signature{1, 2, 3};
    EXPECT_THAT(chain(generic.ScComputeSignature(false, signature)), SizeIs(2)); // nothing was hashed
    EXPECT_THAT(signature, ElementsAre(1, 2, 3));
}

TEST_F(SignatureTest, BuffersAreAsLargeAsTheAnswersNeed)
{
    generic.readSignature(0x0520, false);
    const auto& calls = pcsc().calls();
    EXPECT_EQ(calls[calls.size() - 2].capacity, 32u);
    EXPECT_EQ(calls.back().capacity, 256u);
}

} // namespace

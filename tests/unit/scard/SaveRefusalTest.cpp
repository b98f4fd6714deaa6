#include "fixtures/CardOnImage.h"
#include "fixtures/CompanyImage.h"
#include "fixtures/ImageFailure.h"
#include "fixtures/WorkshopImage.h"

#include <scard/SCardCompanyG1.h>
#include <scard/SCardCompanyG2.h>
#include <scard/SCardWorkshopG1.h>
#include <scard/SCardWorkshopG2.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

// What saveToFile() refuses, in the order of the refusals, the same for every workshop and company card.
// Driver cards tell the debug stream, too.

namespace {

using test::chain;
using test::Image;
using test::Version;
using testing::IsEmpty;

/// Everything that the class reads from an image.
template <typename Card>
Image wholeImage();

template <>
Image wholeImage<scard::SCardWorkshopG1>()
{
    return test::smallWorkshopImage();
}

template <>
Image wholeImage<scard::SCardWorkshopG2>()
{
    return test::smallWorkshopImageG2(Version::second);
}

template <>
Image wholeImage<scard::SCardCompanyG1>()
{
    return test::smallCompanyImage();
}

template <>
Image wholeImage<scard::SCardCompanyG2>()
{
    return test::smallCompanyImage().append(test::secondCompanyApplication(Version::second, test::dataG2));
}

template <typename Card>
class SaveRefusal : public testing::Test
{
  protected:
    SaveRefusal() { test::DebugStream::clear(); }
    ~SaveRefusal() override { EXPECT_FALSE(test::DebugStream::contains(QStringLiteral("Save failed"))); }

    test::CardOnImage<Card> card{wholeImage<Card>()};
};

using Cards = testing::Types<
    scard::SCardWorkshopG1, scard::SCardWorkshopG2, scard::SCardCompanyG1, scard::SCardCompanyG2>;
TYPED_TEST_SUITE(SaveRefusal, Cards, );

TYPED_TEST(SaveRefusal, AClosedFileIsRefusedFirst)
{
    EXPECT_EQ(test::saveToClosedFile(this->card), test::notOpened);
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
    ASSERT_THAT(chain(this->card.read()), IsEmpty());
    EXPECT_EQ(test::saveToClosedFile(this->card), test::notOpened);
}

TYPED_TEST(SaveRefusal, DataThatAreNotValidAreRefusedNextWithoutALine)
{
    TypeParam blank;
    ASSERT_THAT(chain(this->card.calcDataToRead()), IsEmpty());
    test::DebugStream::clear();

    EXPECT_EQ(test::saveToOpenFile(blank), test::noValidData);
    EXPECT_EQ(test::saveToOpenFile(this->card), test::noValidData);

    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

TYPED_TEST(SaveRefusal, DataOfAnImageAreRefusedAndNothingIsWritten)
{
    ASSERT_THAT(chain(this->card.read()), IsEmpty());
    test::DebugStream::clear();

    EXPECT_EQ(test::saveToOpenFile(this->card), test::notAllowed);
    EXPECT_THAT(test::DebugStream::lines(), IsEmpty());
}

} // namespace

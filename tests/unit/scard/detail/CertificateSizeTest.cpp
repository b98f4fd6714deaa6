#include "fixtures/Image.h"

#include <scard/detail/ApplicationName.h>
#include <scard/detail/CertificateSize.h>
#include <support/DebugStream.h>

#include <gmock/gmock.h>

namespace {

using namespace scard::detail;
using test::Bytes;

TEST(CertificateSize, FollowsFromTheLengthBehindTheTag)
{
    const struct
    {
        CertificateHeader header;
        unsigned short size;
    } rows[] = {
        {{0x7F, 0x21, 0x81, 0xC8, 0x7F}, 204},
        {{0x7F, 0x21, 0x81, 0xC9, 0x7F}, 205},
        {{0x7F, 0x21, 0x81, 0xFF, 0x00}, 259},
        {{0x7F, 0x21, 0x81, 0x00, 0x00}, 4},
        {{0x7F, 0x21, 0x82, 0x01, 0x2C}, 305},
        {{0x7F, 0x21, 0x82, 0x00, 0x00}, 5},
        {{0x7F, 0x21, 0x7A, 0x7F, 0x4E}, 125},
        {{0x7F, 0x21, 0x00, 0xFF, 0xFF}, 3},
        // Lengths of three bytes and more are not those of a certificate; the byte counts as the length.
        {{0x7F, 0x21, 0x80, 0xFF, 0xFF}, 131},
        {{0x7F, 0x21, 0x83, 0xFF, 0xFF}, 134},
        {{0x7F, 0x21, 0xFF, 0xFF, 0xFF}, 258},
    };
    for (const auto& row : rows)
        EXPECT_EQ(certificateSize(row.header), row.size);
}

TEST(CertificateSize, Is204ForWhatIsNoCertificate)
{
    for (const CertificateHeader& header :
         {CertificateHeader{0x00, 0x00, 0x00, 0x00, 0x00}, CertificateHeader{0x7F, 0x22, 0x82, 0x01, 0x2C},
          CertificateHeader{0x21, 0x7F, 0x82, 0x01, 0x2C}, CertificateHeader{0xFF, 0xFF, 0xFF, 0xFF, 0xFF}})
        EXPECT_EQ(certificateSize(header), 204);
}

TEST(CertificateSize, ALengthThatNoEfCanHaveStaysLargerThanAnyEf)
{
    EXPECT_EQ(certificateSize({0x7F, 0x21, 0x82, 0xFF, 0xFA}), 65535);
    EXPECT_EQ(certificateSize({0x7F, 0x21, 0x82, 0xFF, 0xFB}), 65535);
    EXPECT_EQ(certificateSize({0x7F, 0x21, 0x82, 0xFF, 0xFF}), 65535);
}

class CertificateSizeOnImage : public testing::Test
{
  protected:
    /// Size of the certificate EF C101 in an image that holds it with these bytes.
    static unsigned short sizeOf(const Bytes& content)
    {
        return sizeIn(test::Image().add(0x0501, test::dataG2, {1, 1, 1}).add(0xC101, test::dataG2, content));
    }

    static unsigned short sizeIn(const test::Image& image)
    {
        test::ImageFile file(image);
        scard::SCardGeneric card(file, QDateTime(), scard::RegionDDD);
        card.ScSelectFile(secondGenerationApplication());
        return get2ndGenCertificateSize(card, 0xC101);
    }
};

TEST_F(CertificateSizeOnImage, ComesFromTheImagesCopy)
{
    EXPECT_EQ(sizeOf({0x7F, 0x21, 0x81, 0xC8, 0x00}), 204);
    EXPECT_EQ(sizeOf({0x7F, 0x21, 0x82, 0x01, 0x2C, 0x00}), 305);
    EXPECT_EQ(sizeOf(Bytes(204)), 204);
    EXPECT_TRUE(test::DebugStream::lines().filter("get2ndGenCertificateSize").isEmpty());
}

TEST_F(CertificateSizeOnImage, Is0AndALogLineWhenThereIsNoHeader)
{
    EXPECT_EQ(sizeOf({0x7F, 0x21, 0x81, 0xC8}), 0);
    EXPECT_EQ(sizeOf({}), 0);
    EXPECT_EQ(sizeIn(test::Image().add(0x0501, test::dataG2, {1, 1, 1})), 0);
    const QStringList lines = test::DebugStream::lines().filter(
        "get2ndGenCertificateSize(): Could not read certificate size. Not available? libscard: ");
    EXPECT_EQ(lines.size(), 3);
}

} // namespace

#include <scardverify/VerifyImage.h>

#include <gtest/gtest.h>

#include <cstddef>

// Hosts make room for reports, and walk over what is in them.

namespace {

struct Size
{
    std::size_t bytes;
    const char* type;
    std::size_t withLongPointers;
    std::size_t withShortPointers;
};

constexpr Size sizes[] = {
    Size{sizeof(scard::verify::RootKey), "scard::verify::RootKey", 48, 24},
    Size{sizeof(scard::verify::RootKeyResult), "scard::verify::RootKeyResult", 64, 32},
    Size{sizeof(scard::verify::Finding), "scard::verify::Finding", 32, 32},
    Size{sizeof(scard::verify::RecordReport), "scard::verify::RecordReport", 24, 24},
    Size{sizeof(scard::verify::CertificateReport), "scard::verify::CertificateReport", 64, 36},
    Size{sizeof(scard::verify::ApplicationReport), "scard::verify::ApplicationReport", 88, 48},
    Size{sizeof(scard::verify::UncoveredPart), "scard::verify::UncoveredPart", 24, 24},
    Size{sizeof(scard::verify::VerificationReport), "scard::verify::VerificationReport", 80, 40},
};

TEST(VerifyInterfaceLayout, EachStructThatHostsAreCompiledAgainstHasTheSizeThatItHad)
{
    for (const Size& size : sizes) {
        const bool isLong = sizeof(void*) == 8;
        EXPECT_EQ(size.bytes, isLong ? size.withLongPointers : size.withShortPointers) << size.type;
    }
}

} // namespace

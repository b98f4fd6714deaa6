#include <scard/detail/CertificateSize.h>

#include <scard/records/BigEndian.h>

#include <QDebug>

#include <algorithm>

namespace scard::detail {

unsigned short certificateSize(const CertificateHeader& header)
{
    constexpr unsigned short usualSize = 204;
    constexpr std::uint32_t largestSize = 0xFFFF;
    constexpr std::uint32_t tagLength = 2;
    // ISO/IEC 7816-4: what the byte behind the tag means.
    constexpr unsigned char lengthInOneByte = 0x81;
    constexpr unsigned char lengthInTwoBytes = 0x82;

    if (header[0] != 0x7F || header[1] != 0x21)
        return usualSize;
    std::uint32_t size = 0;
    if (header[2] == lengthInOneByte)
        size = header[3] + tagLength + 2;
    else if (header[2] == lengthInTwoBytes)
        size = fromBigEndian(header.data() + 3, 2) + tagLength + 3;
    else
        size = header[2] + tagLength + 1;
    return static_cast<unsigned short>(std::min(size, largestSize));
}

unsigned short get2ndGenCertificateSize(SCardGeneric& card, unsigned short fid)
{
    try {
        return certificateSize(card.readFrom<CertificateHeader>(fid, 0, false));
    } catch (const aux::Error& failure) {
        qDebug().noquote() << "get2ndGenCertificateSize(): Could not read certificate size. Not available?"
                           << failure;
        return 0;
    }
}

} // namespace scard::detail

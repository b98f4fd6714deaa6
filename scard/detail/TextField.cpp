#include <scard/detail/TextField.h>

#include <QTextCodec>

#include <algorithm>

namespace scard::detail {

QString decodeText(unsigned char codePage, const unsigned char* characters, std::size_t length)
{
    constexpr unsigned char latin1 = 1;
    constexpr unsigned char lastPart = 16;
    if (codePage < 1 || codePage > lastPart)
        codePage = latin1;
    const QTextCodec* codec = QTextCodec::codecForName("ISO8859-" + QByteArray::number(codePage));
    const unsigned char* end = std::find(characters, characters + length, '\0');
    const char* text = reinterpret_cast<const char*>(characters);
    const int textLength = static_cast<int>(end - characters);
    // There is no part 12, and a Qt without the part's codec must not lose the text either.
    return codec ? codec->toUnicode(text, textLength) : QString::fromLatin1(text, textLength);
}

} // namespace scard::detail

#include <scard/detail/ErrorBuilder.h>

#include <utility>

namespace scard::detail {

aux::Error libraryError(const QString& message, unsigned int id)
{
    aux::Error failure;
    failure.append(aux::ErrorData(QStringLiteral("libscard"), QString(message), id));
    return failure;
}

unsigned int firstId(const aux::Error& failure)
{
    return failure.isEmpty() ? 0 : failure.begin()->getId();
}

aux::Error withStep(aux::Error lower, const QString& message)
{
    lower << libraryError(message, firstId(lower));
    return lower;
}

aux::Error ledByStep(const QString& message, aux::Error lower)
{
    aux::Error failure = libraryError(message, firstId(lower));
    failure << std::move(lower);
    return failure;
}

QString hexFid(unsigned short fid)
{
    return QString::number(fid, 16);
}

} // namespace scard::detail

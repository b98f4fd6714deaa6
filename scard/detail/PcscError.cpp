#include <scard/detail/PcscError.h>

#include <winscard.h>

#include <utility>

namespace scard::detail {

aux::Error pcscError(const QString& message, long code)
{
    QString text = message + QStringLiteral(": ");
    text += QString::fromLocal8Bit(pcsc_stringify_error(code));
    aux::Error failure;
    failure.append(aux::ErrorData(QStringLiteral("SCard"), std::move(text), 0));
    return failure;
}

} // namespace scard::detail

#include "PcscText.h"

#include <winscard.h>

#include <utility>

QString pcscText(long code)
{
    // A copy: PC/SC puts the next text into the same place.
    return QString::fromLocal8Bit(pcsc_stringify_error(code));
}

aux::Error pcscFailure(const QString& call, long code)
{
    QString text = call + QStringLiteral(": ");
    text += pcscText(code);
    aux::Error failure;
    failure.append(aux::ErrorData(QStringLiteral("SCard"), std::move(text), 0));
    return failure;
}

#include "DownloadTime.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace {

QDateTime utc(const QString& text, const QString& format)
{
    QDateTime time = QDateTime::fromString(text, format);
    time.setTimeSpec(Qt::UTC);
    return time;
}

} // namespace

/// "C_20240305_1407_J_Mustermann_DF000000123456.DDD", "C_DF00000012345600_D_20240305_1407.TGD" and
/// "D__DF0000001234562403051407.C1B".
QDateTime timeInName(const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    static const QRegularExpression dayAndTime(QStringLiteral("(?:^|_)(\\d{8})_(\\d{4})(?:\\d{2})?(?=[_.])"));
    const QRegularExpressionMatch match = dayAndTime.match(name);
    if (match.hasMatch())
        return utc(match.captured(1) + match.captured(2), QStringLiteral("yyyyMMddHHmm"));
    static const QRegularExpression tenDigits(
        QStringLiteral("(\\d{10})\\.C1B$"), QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch shortMatch = tenDigits.match(name);
    if (shortMatch.hasMatch())
        return utc(QStringLiteral("20") + shortMatch.captured(1), QStringLiteral("yyyyMMddHHmm"));
    return {};
}

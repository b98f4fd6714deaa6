#include "ImageFailure.h"

#include <support/DebugStream.h>

#include <QDebug>

namespace test {

aux::Error libraryFailure(const std::vector<std::string>& messages, unsigned int id)
{
    aux::Error failure;
    for (const std::string& message : messages)
        failure.append(aux::ErrorData(QStringLiteral("libscard"), QString::fromStdString(message), id));
    return failure;
}

aux::Error missing(const char* hexFid)
{
    return libraryFailure(
        {"memSelectFile(): Dataset not found",
         std::string("readFromMem() memSelectFile() Failed: ID ") + hexFid});
}

QString logged(const char* text, const aux::Error& failure)
{
    QString line;
    QDebug(&line).noquote() << text << failure;
    return line.trimmed();
}

QStringList loggedLabels()
{
    return DebugStream::lines().filter(QStringLiteral("\nEF_"));
}

} // namespace test

#include "ImageFailure.h"

#include <support/DebugStream.h>

#include <gtest/gtest.h>

#include <QDebug>
#include <QFile>
#include <QTemporaryDir>

namespace test {

const Chain notOpened{lib("saveToFile(): File not opened", 0)};
const Chain noValidData{lib("saveToFile(): no valid data", 0)};
const Chain notAllowed{lib("saveToFile(): not allowed on data read from file ", 0)};

QStringList labelsOf(std::initializer_list<Efs> groups)
{
    QStringList labels;
    for (const Efs& efs : groups)
        for (const Ef& ef : efs)
            labels << QString::fromLatin1(ef.label);
    return labels;
}

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

Chain tooShort(std::size_t length, std::size_t requested)
{
    return {
        lib("readFromMem() invalid dataset size:" + std::to_string(length) +
                "requested:" + std::to_string(requested),
            6700)};
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

QString lastLoggedLabel()
{
    return loggedLabels().value(loggedLabels().size() - 1);
}

QString lastLogged()
{
    return DebugStream::lines().value(DebugStream::lines().size() - 1);
}

QStringList loggedErrors()
{
    return DebugStream::lines().filter(QStringLiteral("Error"));
}

QString progressOf(scard::SCardGeneric& card)
{
    DebugStream::clear();
    card.emitProgress();
    return DebugStream::lines().join(QLatin1Char('|'));
}

Chain saveToOpenFile(scard::SCardGeneric& card)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("image")));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    const Chain failure = chain(card.saveToFile(file));
    EXPECT_EQ(file.size(), 0);
    return failure;
}

Chain saveToClosedFile(scard::SCardGeneric& card)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("image")));
    const Chain failure = chain(card.saveToFile(file));
    EXPECT_FALSE(file.exists());
    return failure;
}

} // namespace test

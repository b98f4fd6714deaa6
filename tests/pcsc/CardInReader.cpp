#include "CardInReader.h"

#include <support/ExpectedDriver.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <utility>

namespace test {

CardInReader::CardInReader()
{
    pcsc().reset();
    pcsc().addReader(virtualReaderName);
    insert(driverCard());
}

CardInReader::~CardInReader()
{
    removeDownloads();
    EXPECT_EQ(pcsc().listsNotFreed(), 0u);
    pcsc().reset();
}

QStringList CardInReader::downloads()
{
    QStringList paths;
    for (const QFileInfo& file : QDir("/tmp").entryInfoList({"C_*", "*.C1B"}, QDir::Files | QDir::System))
        paths.append(file.filePath());
    return paths;
}

void CardInReader::removeDownloads()
{
    for (const QString& path : downloads())
        EXPECT_TRUE(QFile::remove(path)) << path.toStdString();
}

sim::Card& CardInReader::insert(sim::CardDescription description)
{
    m_card = std::make_unique<sim::Card>(std::move(description));
    pcsc().insert(virtualReaderName, *m_card);
    return *m_card;
}

void CardInReader::setTypeByte(int type)
{
    sim::Bytes identification = *m_card->file(sim::AidG1, 0x0501);
    identification[0] = static_cast<std::uint8_t>(type);
    m_card->setFile(sim::AidG1, 0x0501, identification);
}

long CardInReader::connect()
{
    SCARDCONTEXT context = 0;
    SCARDHANDLE handle = 0;
    DWORD protocol = 0;
    EXPECT_EQ(pcsc().establishContext(SCARD_SCOPE_SYSTEM, &context), SCARD_S_SUCCESS);
    EXPECT_EQ(
        pcsc().connect(context, virtualReaderName, SCARD_SHARE_SHARED, SCARD_PROTOCOL_T1, &handle, &protocol),
        SCARD_S_SUCCESS);
    return handle;
}

void CardInReader::expectFileOfEachRegion(int imageSize)
{
    const struct
    {
        scard::FilenameRegion region;
        const char* pattern;
    } rows[] = {
        {scard::RegionDDD, R"(^/tmp/C_\d{8}_\d{4}_J_Mustermann_DF000000123456\.DDD$)"},
        {scard::RegionC1B, R"(^/tmp/D__DF000000123456\d{10}\.C1B$)"},
        {scard::RegionTGD, R"(^/tmp/C_DF000000123456[0-9A-Z]{2}_D_\d{8}_\d{4}\.TGD$)"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.pattern);
        card().reset();
        const Download result = download(row.region);
        EXPECT_TRUE(QRegularExpression(row.pattern).match(result.path).hasMatch())
            << result.path.toStdString();
        EXPECT_EQ(result.image.size(), imageSize);
        QFile::remove(result.path);
    }
}

std::vector<std::string> CardInReader::commands() const
{
    return commandsOf(*m_card);
}

} // namespace test

#include "Host.h"

#include <QFile>

#include <utility>

namespace test {

Host::Host()
{
    using scard::SCardReader;
    QObject::connect(&m_reader, &SCardReader::cardType, [this](scard::SCardMeta::Type type) {
        m_download.types.push_back(type);
        note("cardType");
    });
    QObject::connect(&m_reader, &SCardReader::progress, [this](int percent) {
        m_download.progress.push_back(percent);
        note("progress");
    });
    QObject::connect(&m_reader, &SCardReader::cardLanguage, [this](const QLocale& language) {
        m_download.languages.push_back(language.name());
        note("cardLanguage");
    });
    QObject::connect(&m_reader, &SCardReader::cardHolder, [this](const QString& name) {
        m_download.holders.push_back(name);
        note("cardHolder");
    });
    QObject::connect(&m_reader, &SCardReader::removed, [this] {
        ++m_download.removed;
        note("removed");
    });
    QObject::connect(&m_reader, &SCardReader::error, [this] { ++m_download.errors; });
    QObject::connect(
        &m_reader, &SCardReader::readDone, [this](const std::shared_ptr<scard::SCardGeneric>& card) {
            m_download.card = card;
            note("readDone");
        });
}

Host::~Host()
{
    m_reader.uninit();
}

Download Host::download(scard::FilenameRegion region)
{
    m_download = Download();
    aux::Error failure;
    if (!m_initialised) {
        failure = m_reader.init();
        m_initialised = failure.isEmpty();
    }
    if (failure.isEmpty()) {
        failure = m_reader.open();
        if (failure.isEmpty())
            failure = m_reader.read(region);
        m_download.closeFailure = m_reader.close();
    }
    m_download.failure = std::move(failure);
    if (m_download.card) {
        m_download.path = QStringLiteral("/tmp/") + m_download.card->getFilename();
        m_download.image = fileContent(m_download.path);
    }
    return std::exchange(m_download, Download());
}

void Host::note(const QString& signal)
{
    if (m_download.order.empty() || m_download.order.back() != signal)
        m_download.order.push_back(signal);
}

Download download(scard::FilenameRegion region)
{
    Host host;
    return host.download(region);
}

QByteArray fileContent(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

} // namespace test

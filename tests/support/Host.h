#pragma once

#include <aux/Error.h>
#include <scard/SCardReader.h>

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

namespace test {

/// What came out of one download.
struct Download
{
    aux::Error failure;
    aux::Error closeFailure;                   ///< of close(), which comes after each open()
    std::shared_ptr<scard::SCardGeneric> card; ///< null when readDone() did not come
    QString path;                              ///< of the file, empty when readDone() did not come
    QByteArray image;
    std::vector<scard::SCardMeta::Type> types;
    std::vector<int> progress;
    std::vector<QString> languages;
    std::vector<QString> holders;
    int removed = 0;
    int errors = 0;
    std::vector<QString> order; ///< names of the signals as they came, a row of the same one once
};

/// A host with one reader object, as hosts have it: init(), then card after card.
class Host
{
  public:
    Host();
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// init() when it has not succeeded yet, open(), read(), close(), with everything that the reader says.
    Download download(scard::FilenameRegion region = scard::RegionDDD);

  private:
    void note(const QString& signal);

    scard::SCardReader m_reader;
    bool m_initialised = false;
    Download m_download;
};

/// One download with a reader object of its own.
Download download(scard::FilenameRegion region = scard::RegionDDD);

/// All bytes of a file; none when it cannot be opened.
QByteArray fileContent(const QString& path);

} // namespace test

#pragma once

#include "../reader/CardFailure.h"
#include "../reader/CardIdentity.h"
#include "../verify/Verification.h"
#include "FinishedFile.h"
#include "ProgressDisplay.h"
#include "WrittenFile.h"

#include <scard/SCardReader.h>

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

struct DownloadOptions
{
    scard::FilenameRegion region = scard::RegionDDD;
    QString folder; ///< where finished downloads go; empty: they stay in "/tmp/"
    FinishedFile::Existing existing = FinishedFile::Existing::Refused;
    bool verifies = false;                     ///< the finished file's signatures are checked
    std::vector<scard::verify::RootKey> roots; ///< that they should lead to
};

/// The finished file.
struct StoredImage
{
    QString path;
    qint64 size = 0; ///< bytes
    QString sha256;
    int signatures = 0;
};

struct DownloadResult
{
    ExitCode code = exitDone;
    std::optional<CardIdentity> card; ///< empty when it could not be told
    QString holder;
    QString language;
    QStringList unreadEfs;                    ///< EFs that could not be read, also of a complete download
    std::optional<StoredImage> file;          ///< a complete download, wherever it had to stay
    std::optional<qint64> durationMs;         ///< empty when there was no card to read
    QDateTime downloadedAt;                   ///< null without a complete download
    std::optional<Verification> verification; ///< empty when it was not asked for, or there is no file
    std::optional<CardFailure> failure;       ///< empty when all is well
};

/// One download of the card in the first reader: open, read, close, and the file into its folder.
class CardDownload
{
  public:
    /// @param cardLine what stands in front of the line that names the card
    /// @param stopped called, the display ended and the reader released, when the program was asked to end
    ///        while nothing was written yet; does not come back
    CardDownload(
        DownloadOptions options, ProgressDisplay& display, QString cardLine, std::function<void()> stopped);

    /// @p reader has been initialised; it is released afterwards.
    DownloadResult run(scard::SCardReader& reader);

  private:
    void listenTo(scard::SCardReader& reader);
    void stopWhenAsked(scard::SCardReader& reader);
    void noteType(scard::SCardMeta::Type type);
    aux::Error read(scard::SCardReader& reader);
    void fail(const aux::Error& failure, const QString& file);
    void finish(const QString& source);
    void identifyFromFile(const QString& path);
    void bring(const QString& source);
    void verify(const QByteArray& image);

    const DownloadOptions m_options;
    ProgressDisplay& m_display;
    const QString m_cardLine;
    const std::function<void()> m_stopped;

    DownloadResult m_result;
    std::shared_ptr<scard::SCardGeneric> m_done;
};

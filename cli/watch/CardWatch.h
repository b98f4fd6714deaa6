#pragma once

#include "../download/CardDownload.h"
#include "../download/DownloadReport.h"
#include "../reader/ReaderWait.h"
#include "HookCommand.h"

#include <scard/SCardReader.h>

#include <QByteArray>

#include <memory>

struct WatchOptions
{
    bool downloads = false; ///< or only tells what each card is
    DownloadOptions download;
    ReportStyle style = ReportStyle::Text;
    QString command;
};

/// Handles each card that is put into the first reader, until the program is asked to end. Outlives readers
/// and the card service: it waits for them, and takes a new reader object then.
class CardWatch
{
  public:
    explicit CardWatch(WatchOptions options);
    ~CardWatch();
    CardWatch(const CardWatch&) = delete;
    CardWatch& operator=(const CardWatch&) = delete;

    /// Comes back when the program was asked to end.
    void run();

  private:
    /// One card, from being put in until it is taken out.
    struct Insertion
    {
        QByteArray reader;
        unsigned long events = 0;
        int service = 0; ///< counts how often service or reader came back

        bool operator==(const Insertion& other) const
        {
            return reader == other.reader && events == other.events && service == other.service;
        }
    };

    bool ensureReader(const ReaderSurvey& survey);
    void waitForReader(const aux::Error& failure);
    void takeReader(const ReaderSurvey& survey);
    void releaseReader();
    void lookAtCard(const ReaderSeen& reader);
    void cardOut();
    void handle(const ReaderSeen& reader);
    void download();
    void identify(const ReaderSeen& reader);

    const WatchOptions m_options;
    const HookCommand m_command;
    std::unique_ptr<scard::SCardReader> m_reader;
    std::unique_ptr<ReaderWait> m_wait;
    ReaderSurvey m_taken; ///< the readers that the object knows
    QString m_toldFailure;
    QByteArray m_toldReader;
    int m_service = 0;
    std::optional<Insertion> m_inside;
};

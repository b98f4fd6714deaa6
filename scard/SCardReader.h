#pragma once

#include <aux/Error.h>
#include <scard/Export.h>
#include <scard/SCardGeneric.h>
#include <scard/SCardMeta.h>

#include <QLocale>
#include <QObject>
#include <QString>

#include <memory>

/// Downloads EU digital tachograph cards, and answers what is on them.
namespace scard {

/// The object through which a host reaches the card: PC/SC context, presence of a card, and one whole
/// download.
///
/// Calling order: init(); monitor() as often as wanted; on present(true): open(), read(), close(); at
/// the end uninit(). The destructor releases neither the PC/SC context nor the card. A failed PC/SC
/// call gives an entry with source "SCard", the message named below, ": " and PC/SC's text, id 0.
///
/// The first reader that PC/SC lists is used. The names of the readers found by init() stay in memory until
/// the process ends.
///
/// Threads: none of its own. Every operation runs and blocks on the caller's thread; the host
/// serialises the calls. Signals reach receivers of other threads through their event loops.
class SCARD_EXPORT SCardReader : public QObject
{
    Q_OBJECT

  public:
    /// An object that has not reached PC/SC yet. Registers the signals' types for receivers in other threads.
    SCardReader();
    ~SCardReader() override;

    /// Establishes the PC/SC context and takes the list of readers. Once per object: for a reader that is
    /// plugged in later a host makes a new object. Errors: "init: ScardEstablishContext() Failed!", "init:
    /// SCardListReaders() Failed" (also when there is no reader), and, source "libscard", "init: No USB CCID
    /// reader found".
    aux::Error init();

    /// Releases the PC/SC context. Error: "uninit: SCardReleaseContext() Failed".
    aux::Error uninit();

    /// Connects to the card in the first reader, shared with other programs. Errors: "open: SCardConnect()
    /// Failed", "open: SCardStatus() Failed".
    aux::Error open();

    /// Disconnects from the card and leaves it as it is. Error: "close: SCardDisconnect() Failed".
    aux::Error close();

    /// Waits for a change of the readers and emits present() and removed() for it.
    /// @param timeoutMs milliseconds; INFINITE of PC/SC (FFFFFFFF) waits without limit, 0 does not wait
    /// @return always success: a time-out and a failure of PC/SC look alike here, so a host that waits
    ///         in a loop must see to it that the loop does not spin
    aux::Error monitor(unsigned int timeoutMs);

    /// Downloads the connected card into a file under "/tmp/" and emits readDone().
    ///
    /// The first failing step ends it: its error is returned with the step's entry behind it (source
    /// "libscard", id 0): "No SCardReader Connection established", "Failed at reading card information",
    /// "Failed calculating read data size", "Failed reading card data", "Failed at saving card data to
    /// file", "Failed at post download task". No signal reports it. What was written of the file stays.
    /// The card is told of the download only after the whole file is on the disk: a driver card the time, a
    /// workshop card that it counts calibrations from 0 again; a company card is told nothing.
    ///
    /// Blocks for the tens of seconds that a card needs. progress() and holder come from inside the call.
    /// @param region how the file is named; its name is SCardGeneric::getFilename() of the card in readDone()
    aux::Error read(FilenameRegion region);

    /// Makes the card object for type and generation of the identified @p card, on the same card or image:
    /// SCardDriverG1, SCardWorkshopG1 or SCardCompanyG1, or its class of the second generation (version 2.2
    /// included); a copy of @p card itself for a type that has no class.
    std::shared_ptr<SCardGeneric> generateSpecific(const SCardGeneric& card);

  Q_SIGNALS:
    /// Declared for the host; the library never emits it: failures are what the operations return.
    void error(aux::Error const& failure);

    /// A watched reader changed: is there a card in it? Also false when a reader came or went. The first
    /// monitor() tells it of each reader. Only the first reader is the one that open() takes.
    void present(bool isPresent);

    /// The card was removed; by monitor() behind present(false), or during a download.
    void removed();

    /// A download is complete: the file is whole and closed, the card was told. The object is the receiver's
    /// from now on and answers for as long as it is kept, also when the card is gone.
    void readDone(std::shared_ptr<scard::SCardGeneric> card);

    /// Percentage of the running download, of the bytes that the card's counts promise; can pass 100 when the
    /// card holds more. Comes with each answer of the card, so the same number comes many times.
    void progress(int percent);

    /// Language that the holder prefers; not told of a first-generation company card.
    void cardLanguage(QLocale language);

    /// What kind of card it is; once in a download, before any dataset is read.
    void cardType(scard::SCardMeta::Type type);

    /// First names, ", ", surname; of a second-generation company card the company's name.
    void cardHolder(QString name);

  private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace scard

Q_DECLARE_METATYPE(std::shared_ptr<scard::SCardGeneric>)

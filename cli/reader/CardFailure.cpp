#include "CardFailure.h"

#include "../Console.h"
#include "PcscText.h"

#include <scard/ElementaryFile.h>

#include <QRegularExpression>

#include <winscard.h>

#include <algorithm>
#include <iterator>

using scard::SCardMeta::Type;

namespace {

/// What a text of the library or of PC/SC means. "%1" stands for the moment: " while EF_Places was read".
struct Meaning
{
    ExitCode code;
    const char* message;
    const char* advice;
};

struct PcscRow
{
    LONG code;
    Meaning meaning;
};

struct TextRow
{
    const char* text;
    Meaning meaning;
};

struct StatusRow
{
    unsigned int status;
    const char* advice;
};

struct StampRow
{
    Type type;
    const char* meaning;
};

constexpr Meaning serviceStopped = {
    exitNoReader, "The card service stopped%1.",
    "Is pcscd running? \"systemctl start pcscd.socket\" starts it; then try again."};
constexpr Meaning readerGone = {
    exitNoReader, "The card reader is gone.", "Plug the reader in again, and try again."};
constexpr Meaning otherProtocol = {
    exitCardFailed, "Another program talks to the card with another protocol.",
    "Take the card out and put it in again, before the other program reaches it."};
constexpr Meaning cardReset = {
    exitCardFailed, "Another program reset the card%1.",
    "End the other programs that use cards, take the card out and put it in again."};
constexpr Meaning noAnswer = {
    exitCardFailed, "The card in the reader does not answer.",
    "Put the card in the other way round, chip first, and clean its chip with a soft cloth."};
constexpr Meaning pulled = {
    exitCardFailed, "The card was pulled or lost contact%1.",
    "Put it in again, and leave it in until the download is complete."};
constexpr Meaning wrongCard = {
    exitCardFailed, "The card in the reader is not a tachograph card.",
    "Put a driver, workshop, company or control card in, chip first."};

/// Before the card can be talked to.
const PcscRow connectRows[] = {
    {SCARD_E_NO_SERVICE,
     {exitNoReader, "The card service of this machine does not answer.",
      "Is pcscd installed and running? \"systemctl start pcscd.socket\" starts it."}},
    {SCARD_E_SERVICE_STOPPED, serviceStopped},
    {SCARD_E_INVALID_HANDLE, serviceStopped},
    {SCARD_F_COMM_ERROR, serviceStopped},
    {SCARD_W_SECURITY_VIOLATION,
     {exitNoReader, "The card service does not let this user in.",
      "Allow org.debian.pcsc-lite.access_pcsc and access_card in polkit, or log in at the machine itself."}},
    {SCARD_E_NO_READERS_AVAILABLE,
     {exitNoReader, "There is no card reader.",
      "Plug a reader in; most need the driver of the package libccid. \"scard doctor\" shows what is seen."}},
    {SCARD_E_UNKNOWN_READER, readerGone},
    {SCARD_E_READER_UNAVAILABLE, readerGone},
    {SCARD_E_NO_SMARTCARD,
     {exitNoCard, "There is no card in the reader.",
      "Put the card into the first reader, chip first; \"scard doctor\" names the reader."}},
    {SCARD_W_REMOVED_CARD,
     {exitNoCard, "The card was taken out of the reader.", "Put it in again, and leave it in."}},
    {SCARD_E_SHARING_VIOLATION,
     {exitCardFailed, "Another program has the card to itself.", "End that program, and try again."}},
    {SCARD_W_UNRESPONSIVE_CARD, noAnswer},
    {SCARD_W_UNPOWERED_CARD, noAnswer},
    {SCARD_E_NOT_TRANSACTED, noAnswer},
    {SCARD_W_UNSUPPORTED_CARD, noAnswer},
    {SCARD_E_INVALID_ATR, noAnswer},
    {SCARD_E_PROTO_MISMATCH, otherProtocol},
    {SCARD_W_RESET_CARD, cardReset},
};

/// While the card is talked to.
const PcscRow transmitRows[] = {
    {SCARD_W_REMOVED_CARD, pulled},
    {SCARD_E_NO_SMARTCARD, pulled},
    {SCARD_E_NOT_TRANSACTED, pulled},
    {SCARD_W_UNRESPONSIVE_CARD, pulled},
    {SCARD_W_UNPOWERED_CARD, pulled},
    {SCARD_W_RESET_CARD, cardReset},
    {SCARD_E_PROTO_MISMATCH, otherProtocol},
    {SCARD_E_SHARING_VIOLATION,
     {exitCardFailed, "Another program took the card for itself%1.", "End that program, and try again."}},
    {SCARD_E_NO_SERVICE, serviceStopped},
    {SCARD_E_SERVICE_STOPPED, serviceStopped},
    {SCARD_E_INVALID_HANDLE, serviceStopped},
    {SCARD_F_COMM_ERROR, serviceStopped},
    {SCARD_E_UNKNOWN_READER, readerGone},
    {SCARD_E_READER_UNAVAILABLE, readerGone},
};

constexpr TextRow libraryRows[] = {
    {"init: No USB CCID reader found",
     {exitNoReader, "There is no card reader.", "Plug a reader in; \"scard doctor\" shows what is seen."}},
    {"ScDataTransfer: answer without status word",
     {exitCardFailed, "The card stopped answering%1.",
      "Leave it in until the download is complete; clean its chip with a soft cloth, or try another "
      "reader."}},
    {"ScReadFile: Received data size does not match exptectation",
     {exitCardFailed, "The card gave fewer bytes than it holds%1.",
      "Put it in again; when it happens again, the card is damaged."}},
    {"readFrom() no data received",
     {exitCardFailed, "The card gave nothing%1.",
      "Put it in again; when it happens again, the card is damaged."}},
    {"read() Unknown Card Type", wrongCard},
};

constexpr StatusRow statusRows[] = {
    {0x6281, "What it holds there is damaged; the authority that made out the card replaces it."},
    {0x6400, "Its memory may be damaged; the authority that made out the card replaces it."},
    {0x6581, "Its memory is damaged; the authority that made out the card replaces it."},
    {0x6982, "The card asks for rights that a download does not have; put it in again, and try once more."},
    {0x6A82, "The card lacks this file; it is damaged or was never personalised completely."},
};

constexpr StampRow stampRows[] = {
    {scard::SCardMeta::DriverCard, "The card may still show the date of the download before."},
    {scard::SCardMeta::WorkshopCard, "The card may still count the calibrations since the download before."},
};

constexpr const char* again =
    "Take the card out, put it in again and try once more; --verbose shows the whole failure.";
constexpr int hexadecimalBase = 16;

bool contains(const aux::Error& chain, const char* text)
{
    return std::any_of(chain.begin(), chain.end(), [text](const aux::ErrorData& entry) {
        return entry.getMessage().contains(QLatin1String(text));
    });
}

bool endsWithStep(const aux::Error& chain, const char* step)
{
    const aux::ErrorData& last = *std::prev(chain.end());
    return last.getMessage() == QLatin1String(step);
}

/// The entry that says what happened: those in front of it and behind it say where.
const aux::ErrorData& causeOf(const aux::Error& chain)
{
    const auto cause = std::find_if(chain.begin(), chain.end(), [](const aux::ErrorData& entry) {
        return !entry.getMessage().contains(QLatin1String("calcDataToRead")) &&
               !entry.getMessage().contains(QLatin1String("updateLastCardDownload()")) &&
               !entry.getMessage().contains(QLatin1String("Select DF_Tachograph failed"));
    });
    return cause == chain.end() ? *chain.begin() : *cause;
}

bool isPcsc(const aux::Error& chain)
{
    return causeOf(chain).getSource() == QLatin1String("SCard");
}

/// The EF whose number the failure names; the one that was read last when it names none. A card of two
/// applications that is pulled during the first fails only at the selection of the second: then the EF that
/// could not be read.
QString efOf(const aux::Error& chain, const FailureScene& scene)
{
    static const QRegularExpression number(QStringLiteral("(?:By ID|ID ?)([0-9a-f]{1,4})$"));
    for (const aux::ErrorData& entry : chain) {
        const QRegularExpressionMatch match = number.match(entry.getMessage());
        if (!match.hasMatch())
            continue;
        const ushort fid = match.captured(1).toUShort(nullptr, hexadecimalBase);
        const QString name = scard::efName(fid, true);
        return scard::efName(fid, false) == scene.ef ? scene.ef : name;
    }
    if (!contains(chain, "By Name"))
        return scene.ef;
    return isPcsc(chain) ? scene.unreadEf : QString();
}

bool whileSigning(const aux::Error& chain)
{
    return contains(chain, "readHash() ");
}

bool whileStamping(const aux::Error& chain)
{
    return endsWithStep(chain, "Failed at post download task");
}

QString momentOf(const aux::Error& chain, const QString& ef)
{
    if (ef.isEmpty())
        return {};
    const QString what = whileStamping(chain)  ? QStringLiteral("written")
                         : whileSigning(chain) ? QStringLiteral("signed")
                                               : QStringLiteral("read");
    return QStringLiteral(" while %1 was %2").arg(ef, what);
}

void apply(const Meaning& meaning, CardFailure& failure)
{
    failure.code = meaning.code;
    failure.message = QString::fromLatin1(meaning.message);
    if (failure.message.contains(QLatin1String("%1")))
        failure.message = failure.message.arg(momentOf(failure.chain, failure.ef));
    failure.advice = QString::fromLatin1(meaning.advice);
}

template <std::size_t Count>
bool applyPcscRow(const PcscRow (&rows)[Count], const QString& text, CardFailure& failure)
{
    const auto* row = std::find_if(std::begin(rows), std::end(rows), [&text](const PcscRow& each) {
        return text.endsWith(QStringLiteral(": ") + pcscText(each.code));
    });
    if (row == std::end(rows))
        return false;
    apply(row->meaning, failure);
    return true;
}

bool applyLibraryRow(const QString& text, CardFailure& failure)
{
    const auto* row =
        std::find_if(std::begin(libraryRows), std::end(libraryRows), [&text](const TextRow& each) {
            return text.startsWith(QLatin1String(each.text));
        });
    if (row == std::end(libraryRows))
        return false;
    apply(row->meaning, failure);
    return true;
}

void refused(unsigned int status, CardFailure& failure)
{
    failure.code = exitCardFailed;
    const QString what = failure.ef.isEmpty()           ? QStringLiteral("select its tachograph application")
                         : whileStamping(failure.chain) ? QStringLiteral("change ") + failure.ef
                         : whileSigning(failure.chain)  ? QStringLiteral("sign ") + failure.ef
                                                        : QStringLiteral("give ") + failure.ef;
    failure.message = QStringLiteral("The card refused to %1 (status %2).")
                          .arg(what, QString::number(status, hexadecimalBase).toUpper());
    const auto* row =
        std::find_if(std::begin(statusRows), std::end(statusRows), [status](const StatusRow& each) {
            return each.status == status;
        });
    failure.advice = QString::fromLatin1(row == std::end(statusRows) ? again : row->advice);
}

/// PC/SC could not do something: its text stands behind the last ": ".
void pcscFailed(const QString& text, CardFailure& failure)
{
    const bool transmitting = text.startsWith(QLatin1String("ScDataTransfer "));
    const bool known =
        transmitting ? applyPcscRow(transmitRows, text, failure) : applyPcscRow(connectRows, text, failure);
    if (known)
        return;
    const QString reason = text.section(QStringLiteral(": "), -1);
    const bool starting = text.startsWith(QLatin1String("init: "));
    failure.code = starting ? exitNoReader : exitCardFailed;
    const QString who = starting ? QStringLiteral("The card service failed")
                                 : QStringLiteral("The card could not be reached");
    failure.message = who + (transmitting ? momentOf(failure.chain, failure.ef) : QString()) +
                      QStringLiteral(": ") + reason;
    failure.advice = QString::fromLatin1(again);
}

void happened(CardFailure& failure)
{
    const aux::ErrorData& cause = causeOf(failure.chain);
    const QString text = cause.getMessage();
    if (contains(failure.chain, "Identify Card Generation failed") && cause.getId() != 0)
        apply(wrongCard, failure);
    else if (cause.getSource() == QLatin1String("SCard"))
        pcscFailed(text, failure);
    else if (text == QLatin1String("ScDataTransfer failed"))
        refused(cause.getId(), failure);
    else if (!applyLibraryRow(text, failure)) {
        failure.message = QStringLiteral("The download failed%1: %2.")
                              .arg(momentOf(failure.chain, failure.ef), text.trimmed());
        failure.advice = QString::fromLatin1(again);
    }
}

/// Why the file could not be written: of a write that failed, what the system said.
QString reasonNotSaved(const aux::Error& chain)
{
    for (const aux::ErrorData& entry : chain) {
        if (entry.getMessage().contains(QLatin1String(" failed: ")))
            return entry.getMessage().section(QStringLiteral(": "), -1);
    }
    if (contains(chain, "File not opened"))
        return QStringLiteral("the file could not be made");
    return chain.begin()->getMessage().trimmed();
}

void notSaved(const FailureScene& scene, CardFailure& failure)
{
    const QString reason = reasonNotSaved(failure.chain);
    failure.code = exitNotWritten;
    failure.ef.clear();
    failure.message = QStringLiteral("The download could not be written to /tmp/: %1.").arg(reason);
    failure.advice =
        QStringLiteral("The card was not told of a download. Make room in /tmp/, and try again.");
    if (!scene.file.isEmpty())
        failure.advice += QStringLiteral(" %1 is not complete and must not be used.").arg(scene.file);
}

void notStamped(const FailureScene& scene, CardFailure& failure)
{
    const bool withoutEnd = failure.message.endsWith(QLatin1Char('.'));
    const QString reason = withoutEnd ? failure.message.chopped(1) : failure.message;
    failure.code = exitNotStamped;
    failure.message = QStringLiteral("The download is complete, but the card could not be told of it: %1.")
                          .arg(reason.left(1).toLower() + reason.mid(1));
    const auto* row =
        std::find_if(std::begin(stampRows), std::end(stampRows), [&scene](const StampRow& each) {
            return scene.type == each.type;
        });
    failure.advice =
        row == std::end(stampRows) ? QString() : QString::fromLatin1(row->meaning) + QLatin1Char(' ');
    failure.advice += QStringLiteral("Put it in again and download it once more.");
}

} // namespace

CardFailure cardFailureOf(const aux::Error& chain, const FailureScene& scene)
{
    CardFailure failure;
    failure.chain = chain;
    failure.ef = efOf(chain, scene);
    if (endsWithStep(chain, "Failed at saving card data to file")) {
        notSaved(scene, failure);
        return failure;
    }
    happened(failure);
    if (whileStamping(chain))
        notStamped(scene, failure);
    return failure;
}

CardFailure ownFailure(ExitCode code, const QString& message, const QString& advice)
{
    CardFailure failure;
    failure.code = code;
    failure.message = message;
    failure.advice = advice;
    return failure;
}

void printCardFailure(const CardFailure& failure)
{
    err() << "scard: " << failure.message << '\n';
    if (!failure.advice.isEmpty())
        err() << failure.advice << '\n';
    err().flush();
    printChain(failure.chain);
}

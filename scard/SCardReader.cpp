#include <scard/SCardReader.h>

#include <scard/detail/ErrorBuilder.h>
#include <scard/detail/OutputFile.h>
#include <scard/detail/PcscError.h>
#include <scard/SCardCompanyG1.h>
#include <scard/SCardCompanyG2.h>
#include <scard/SCardDriverG1.h>
#include <scard/SCardDriverG2.h>
#include <scard/SCardWorkshopG1.h>
#include <scard/SCardWorkshopG2.h>

#include <QDebug>

#include <reader.h>
#include <winscard.h>

#include <array>
#include <cstring>
#include <utility>
#include <vector>

namespace scard {

using detail::pcscError;

namespace {

/// Name by which PC/SC Lite reports that a reader came or went.
constexpr char pnpNotification[] = "\\\\?PnP?\\Notification";

SCARD_READERSTATE unawareOf(const char* readerName)
{
    SCARD_READERSTATE state{};
    state.szReader = readerName;
    state.dwCurrentState = SCARD_STATE_UNAWARE;
    state.cbAtr = MAX_ATR_SIZE;
    return state;
}

/// A copy that is never given back: PC/SC is asked about the reader by this name until the process ends.
const char* keptReaderName(const char* name)
{
    return ::strdup(name);
}

template <typename First, typename Second>
std::shared_ptr<SCardGeneric> ofGeneration(const SCardGeneric& card)
{
    if (card.is2ndGeneneration())
        return std::make_shared<Second>(card);
    return std::make_shared<First>(card);
}

/// The step's entry behind the entries of what made it fail.
aux::Error failedStep(aux::Error failure, const char* message)
{
    failure << detail::libraryError(QString::fromLatin1(message));
    return failure;
}

} // namespace

struct Q_DECL_HIDDEN SCardReader::Private
{
    SCARDCONTEXT context = 0;
    SCARDHANDLE cardHandle = 0;
    std::vector<SCARD_READERSTATE> readerStates;
};

SCardReader::SCardReader() : d(std::make_unique<Private>())
{
    // For receivers in other threads.
    qRegisterMetaType<aux::Error>("aux::Error");
    qRegisterMetaType<std::shared_ptr<scard::SCardGeneric>>("std::shared_ptr<scard::SCardGeneric>");
    qRegisterMetaType<scard::SCardMeta::Type>("scard::SCardMeta::Type");
}

SCardReader::~SCardReader() = default;

aux::Error SCardReader::init()
{
    qDebug() << "SCard init";
    LONG code = SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &d->context);
    if (code != SCARD_S_SUCCESS)
        return pcscError(QStringLiteral("init: ScardEstablishContext() Failed!"), code);

    char* names = nullptr;
    auto length = SCARD_AUTOALLOCATE;
    code = SCardListReaders(d->context, nullptr, reinterpret_cast<LPSTR>(&names), &length);
    if (code != SCARD_S_SUCCESS)
        return pcscError(QStringLiteral("init: SCardListReaders() Failed"), code);
    for (const char* name = names; name && *name != '\0'; name += std::strlen(name) + 1)
        d->readerStates.push_back(unawareOf(keptReaderName(name)));
    SCardFreeMemory(d->context, names);

    if (d->readerStates.empty())
        return detail::libraryError(QStringLiteral("init: No USB CCID reader found"));
    d->readerStates.push_back(unawareOf(pnpNotification));
    return {};
}

aux::Error SCardReader::uninit()
{
    qDebug() << "SCard uninit";
    const LONG code = SCardReleaseContext(d->context);
    if (code != SCARD_S_SUCCESS)
        return pcscError(QStringLiteral("uninit: SCardReleaseContext() Failed"), code);
    return {};
}

aux::Error SCardReader::open()
{
    qDebug() << "SCard open";
    const char* readerName = d->readerStates.empty() ? nullptr : d->readerStates.front().szReader;
    DWORD protocol = 0;
    LONG code = SCardConnect(
        d->context, readerName, SCARD_SHARE_SHARED, SCARD_PROTOCOL_T0 | SCARD_PROTOCOL_T1, &d->cardHandle,
        &protocol);
    if (code != SCARD_S_SUCCESS)
        return pcscError(QStringLiteral("open: SCardConnect() Failed"), code);

    std::array<char, 128> connectedName{};
    DWORD nameLength = connectedName.size();
    std::array<unsigned char, MAX_ATR_SIZE> atr{};
    DWORD atrLength = atr.size();
    DWORD state = 0;
    code = SCardStatus(
        d->cardHandle, connectedName.data(), &nameLength, &state, &protocol, atr.data(), &atrLength);
    if (code != SCARD_S_SUCCESS)
        return pcscError(QStringLiteral("open: SCardStatus() Failed"), code);
    qDebug().nospace() << "Reader: " << connectedName.data() << " Length: " << nameLength;
    return {};
}

aux::Error SCardReader::close()
{
    qDebug() << "SCard close";
    const LONG code = SCardDisconnect(d->cardHandle, SCARD_LEAVE_CARD);
    if (code != SCARD_S_SUCCESS)
        return pcscError(QStringLiteral("close: SCardDisconnect() Failed"), code);
    return {};
}

aux::Error SCardReader::monitor(unsigned int timeoutMs)
{
    // The result says nothing that the event states do not say: on a time-out or a failure they stay as
    // they were.
    SCardGetStatusChange(d->context, timeoutMs, d->readerStates.data(), d->readerStates.size());

    // By index: a receiver may call init() again and make the list longer.
    // NOLINTNEXTLINE(modernize-loop-convert): a range would be invalid then
    for (std::size_t i = 0; i < d->readerStates.size(); ++i) {
        const DWORD event = d->readerStates[i].dwEventState;
        d->readerStates[i].dwCurrentState = event;
        if (!(event & SCARD_STATE_CHANGED))
            continue;
        if (event & SCARD_STATE_PRESENT) {
            Q_EMIT present(true);
        } else {
            Q_EMIT present(false);
            Q_EMIT removed();
        }
    }
    return {};
}

aux::Error SCardReader::read(FilenameRegion region)
{
    if (d->cardHandle == 0)
        return detail::libraryError(QStringLiteral("No SCardReader Connection established"));

    SCardGeneric identified(d->cardHandle, QDateTime::currentDateTimeUtc(), RegionDDD);
    aux::Error failure = identified.readCardInfo();
    if (!failure.isEmpty())
        return failedStep(std::move(failure), "Failed at reading card information");
    Q_EMIT cardType(identified.getCardType());

    const std::shared_ptr<SCardGeneric> card = generateSpecific(identified);
    connect(card.get(), &SCardGeneric::progress, this, &SCardReader::progress);
    connect(card.get(), &SCardGeneric::removed, this, &SCardReader::removed);
    connect(card.get(), &SCardGeneric::cardLanguage, this, &SCardReader::cardLanguage);
    connect(card.get(), &SCardGeneric::cardHolderName, this, &SCardReader::cardHolder);
    card->setFilenameRegion(region);

    failure = card->calcDataToRead();
    if (!failure.isEmpty())
        return failedStep(std::move(failure), "Failed calculating read data size");
    failure = card->read();
    if (!failure.isEmpty())
        return failedStep(std::move(failure), "Failed reading card data");

    // Not tested: a file that could not be opened shows itself when the card is saved.
    QFile file;
    detail::openInTmp(file, card->getFilename());
    failure = card->saveToFile(file);
    if (failure.isEmpty())
        failure = detail::syncToDisk(file);
    if (!failure.isEmpty())
        return failedStep(std::move(failure), "Failed at saving card data to file");
    failure = card->postDownloadTasks();
    if (!failure.isEmpty())
        return failedStep(std::move(failure), "Failed at post download task");
    file.close();
    Q_EMIT readDone(card);
    return {};
}

std::shared_ptr<SCardGeneric> SCardReader::generateSpecific(const SCardGeneric& card)
{
    switch (card.getCardType()) {
    case SCardMeta::DriverCard:
        return ofGeneration<SCardDriverG1, SCardDriverG2>(card);
    case SCardMeta::WorkshopCard:
        return ofGeneration<SCardWorkshopG1, SCardWorkshopG2>(card);
    case SCardMeta::CompanyCard:
        return ofGeneration<SCardCompanyG1, SCardCompanyG2>(card);
    default:
        return std::make_shared<SCardGeneric>(card);
    }
}

} // namespace scard

#include "ReaderSurvey.h"

#include "PcscText.h"

#include <winscard.h>

#include <algorithm>
#include <cstring>

namespace {

/// A PC/SC context for as long as it is looked at.
class Context
{
  public:
    Context() : m_code(SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &m_context)) {}
    ~Context()
    {
        if (m_code == SCARD_S_SUCCESS)
            SCardReleaseContext(m_context);
    }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    SCARDCONTEXT handle() const { return m_context; }

    aux::Error failure() const
    {
        if (m_code == SCARD_S_SUCCESS)
            return {};
        return pcscFailure(QStringLiteral("init: ScardEstablishContext() Failed!"), m_code);
    }

  private:
    SCARDCONTEXT m_context = 0;
    LONG m_code;
};

/// A connection to the card in a reader, for as long as the card is asked. Behind it the card is as one that
/// was just put in: EF_ICC and EF_IC are found only from its master file. One that another program uses is
/// left alone.
class Connection
{
  public:
    Connection(const Context& context, const ReaderSeen& reader)
        : m_failure(context.failure()), m_afterwards(reader.isInUse() ? SCARD_LEAVE_CARD : SCARD_RESET_CARD)
    {
        if (!m_failure.isEmpty())
            return;
        DWORD protocol = 0;
        const LONG code = SCardConnect(
            context.handle(), reader.name.constData(), SCARD_SHARE_SHARED,
            SCARD_PROTOCOL_T0 | SCARD_PROTOCOL_T1, &m_card, &protocol);
        if (code != SCARD_S_SUCCESS)
            m_failure = pcscFailure(QStringLiteral("open: SCardConnect() Failed"), code);
    }
    ~Connection()
    {
        if (m_failure.isEmpty())
            SCardDisconnect(m_card, m_afterwards);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    SCARDHANDLE card() const { return m_card; }
    const aux::Error& failure() const { return m_failure; }

  private:
    SCARDHANDLE m_card = 0;
    aux::Error m_failure;
    DWORD m_afterwards;
};

aux::Error listReaders(const Context& context, std::vector<ReaderSeen>& readers)
{
    char* names = nullptr;
    auto length = SCARD_AUTOALLOCATE;
    const LONG code = SCardListReaders(context.handle(), nullptr, reinterpret_cast<LPSTR>(&names), &length);
    if (code != SCARD_S_SUCCESS)
        return pcscFailure(QStringLiteral("init: SCardListReaders() Failed"), code);
    for (const char* name = names; name && *name != '\0'; name += std::strlen(name) + 1)
        readers.push_back({QByteArray(name), 0});
    SCardFreeMemory(context.handle(), names);
    if (readers.empty())
        return pcscFailure(QStringLiteral("init: SCardListReaders() Failed"), SCARD_E_NO_READERS_AVAILABLE);
    return {};
}

aux::Error readStates(const Context& context, std::vector<ReaderSeen>& readers)
{
    std::vector<SCARD_READERSTATE> states(readers.size());
    for (std::size_t i = 0; i < readers.size(); ++i)
        states[i].szReader = readers[i].name.constData();
    const LONG code = SCardGetStatusChange(context.handle(), 0, states.data(), states.size());
    if (code != SCARD_S_SUCCESS && code != SCARD_E_TIMEOUT)
        return pcscFailure(QStringLiteral("init: SCardGetStatusChange() Failed"), code);
    for (std::size_t i = 0; i < readers.size(); ++i)
        readers[i].state = states[i].dwEventState;
    return {};
}

} // namespace

QString ReaderSeen::nameText() const
{
    return QString::fromLocal8Bit(name);
}

bool ReaderSeen::hasCard() const
{
    return (state & SCARD_STATE_PRESENT) != 0;
}

bool ReaderSeen::isMute() const
{
    return (state & SCARD_STATE_MUTE) != 0;
}

bool ReaderSeen::isUnpowered() const
{
    return (state & SCARD_STATE_UNPOWERED) != 0;
}

bool ReaderSeen::isExclusive() const
{
    return (state & SCARD_STATE_EXCLUSIVE) != 0;
}

bool ReaderSeen::isInUse() const
{
    return (state & (SCARD_STATE_INUSE | SCARD_STATE_EXCLUSIVE)) != 0;
}

unsigned long ReaderSeen::events() const
{
    constexpr int counterBits = 16;
    return (state & 0xFFFFFFFF) >> counterBits;
}

bool ReaderSeen::operator==(const ReaderSeen& other) const
{
    return name == other.name && state == other.state;
}

bool ReaderSurvey::sameAs(const ReaderSurvey& other) const
{
    return serviceReachable == other.serviceReachable && readers == other.readers;
}

bool ReaderSurvey::sameReadersAs(const ReaderSurvey& other) const
{
    return std::equal(
        readers.begin(), readers.end(), other.readers.begin(), other.readers.end(),
        [](const ReaderSeen& one, const ReaderSeen& two) { return one.name == two.name; });
}

ReaderSurvey lookAtReaders()
{
    ReaderSurvey survey;
    const Context context;
    survey.failure = context.failure();
    if (!survey.failure.isEmpty())
        return survey;
    survey.serviceReachable = true;
    survey.failure = listReaders(context, survey.readers);
    if (survey.failure.isEmpty())
        survey.failure = readStates(context, survey.readers);
    if (!survey.failure.isEmpty())
        survey.readers.clear();
    return survey;
}

IdentifiedCard identifyCard(const ReaderSeen& reader)
{
    IdentifiedCard identified;
    const Context context;
    const Connection connection(context, reader);
    identified.failure = connection.failure();
    if (!identified.failure.isEmpty())
        return identified;
    scard::SCardGeneric asked(connection.card(), QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    identified.failure = asked.readCardInfo();
    if (identified.failure.isEmpty())
        identified.card = identityOf(asked);
    return identified;
}

void resetCard(const ReaderSeen& reader)
{
    if (!reader.hasCard() || reader.isInUse())
        return;
    const Context context;
    const Connection connection(context, reader);
}

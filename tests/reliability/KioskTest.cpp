// `scard watch` through a kiosk's day: card after card, of which half are pulled at any moment.
#include <simulator/VpcdLink.h>
#include <support/CardKind.h>
#include <support/Host.h>
#include <support/PcscPresence.h>
#include <support/RunningProgram.h>

#include <gmock/gmock.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <csignal>
#include <functional>
#include <iostream>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <thread>
#include <winscard.h>

namespace {

using namespace test;
using testing::AnyOf;
using testing::IsEmpty;

constexpr std::chrono::seconds patience{30};
constexpr int usualCards = 60;
constexpr int cardsToSettle = 10; ///< what the program keeps for all cards to come, it has by then

// Exit codes of the manual.
constexpr int done = 0;
constexpr int noCard = 3;
constexpr int cardFailed = 4;
constexpr int notTold = 6;

template <typename Condition>
bool eventually(Condition condition)
{
    const QDeadlineTimer end(patience);
    while (!condition()) {
        if (end.hasExpired())
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

int numberFromEnvironment(const char* name, int usual)
{
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : usual;
}

/// pcscd's own view of its first reader.
class SlotSeen
{
  public:
    SlotSeen()
    {
        EXPECT_EQ(SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &m_context), SCARD_S_SUCCESS);
        m_state.szReader = virtualReaderName;
    }
    ~SlotSeen() { SCardReleaseContext(m_context); }
    SlotSeen(const SlotSeen&) = delete;
    SlotSeen& operator=(const SlotSeen&) = delete;

    bool waitUntilEmpty() { return waitFor(SCARD_STATE_EMPTY); }

    /// Waits until pcscd has counted one insertion or removal more, and says @p state. A card that fails at
    /// its reset is called gone before it is counted as gone, and the next one would not be noticed then.
    bool waitForNext(DWORD state)
    {
        const unsigned long before = m_counted;
        return waitFor(state, [this, before] { return events() != before; });
    }

  private:
    bool waitFor(
        DWORD wanted, const std::function<bool()>& isNext = [] { return true; })
    {
        const QDeadlineTimer end(patience);
        while (!end.hasExpired()) {
            SCardGetStatusChange(m_context, 500, &m_state, 1);
            m_state.dwCurrentState = m_state.dwEventState;
            if ((m_state.dwEventState & wanted) != 0 && isNext()) {
                m_counted = events();
                return true;
            }
        }
        return false;
    }

    /// The upper half of the state counts cards that came and went.
    unsigned long events() const { return (m_state.dwEventState & 0xFFFF0000UL) >> 16; }

    SCARDCONTEXT m_context = 0;
    SCARD_READERSTATE m_state{};
    unsigned long m_counted = 0;
};

/// A card and the hand that puts it in.
class CardInHand
{
  public:
    explicit CardInHand(const sim::CardDescription& description)
        : m_card(description), m_link(m_card, "127.0.0.1", virtualReaderPort)
    {
        constexpr std::chrono::microseconds lineTime{20};
        m_card.setByteDelay(lineTime);
    }
    ~CardInHand() { takeOut(); }
    CardInHand(const CardInHand&) = delete;
    CardInHand& operator=(const CardInHand&) = delete;

    bool putIn()
    {
        if (!m_link.connect(patience))
            return false;
        m_server = std::thread([this] { m_link.run(); });
        return true;
    }

    void takeOut()
    {
        m_link.stop();
        if (m_server.joinable())
            m_server.join();
    }

    std::size_t commandCount() const { return m_card.commandCount(); }

    /// The EF in @p application; only when it is out.
    const sim::Bytes& file(const sim::Bytes& application, std::uint16_t fid) const
    {
        return *m_card.file(application, fid);
    }

  private:
    sim::Card m_card;
    sim::VpcdLink m_link;
    std::thread m_server;
};

/// One card of the day, known by the number of its chip.
struct Visitor
{
    Visitor(const CardKind& kindOfCard, std::uint32_t number) : kind(&kindOfCard), card(kindOfCard.card)
    {
        for (sim::FileDescription& file : card.masterFiles) {
            if (file.fid != 0x0005)
                continue;
            sim::Bytes serial;
            sim::appendU32(serial, number);
            std::copy(serial.begin(), serial.end(), file.content.begin());
        }
    }

    sim::Bytes wholeImage() const { return kind->image(card, 0); }

    const CardKind* kind;
    sim::CardDescription card;
    bool stayed = false;
    std::size_t commands = 0; ///< that it got before it was pulled
    bool told = false;        ///< of a download
};

bool isFirstOfTwo(const CardKind& kind, const Step& step)
{
    return kind.secondGeneration && step.phase == Phase::Reading && step.generation == 1;
}

/// The file of a card that does not answer from command @p silent on; none when the reading does not end.
std::optional<sim::Bytes> imageOf(const Visitor& visitor, std::size_t silent)
{
    const CardKind& kind = *visitor.kind;
    const auto from = kind.steps.begin() + static_cast<std::ptrdiff_t>(silent);
    const bool isMissed = std::any_of(from, kind.steps.end(), [&kind](const Step& step) {
        return step.phase != Phase::Stamp && !step.tolerated && !isFirstOfTwo(kind, step);
    });
    if (isMissed)
        return std::nullopt;
    if (from == kind.steps.end() || !isFirstOfTwo(kind, *from))
        return visitor.wholeImage();
    // A company card's second application is read before its first, which may be lost.
    const auto named = std::find_if(
        std::find_if(
            kind.steps.begin(), kind.steps.end(),
            [&kind](const Step& step) { return isFirstOfTwo(kind, step); }),
        kind.steps.end(), [](const Step& step) { return step.fid != 0; });
    return kind.image(visitor.card, from->fid == 0 ? named->fid : from->fid);
}

/// All that may have become of it: the answer to its last command may have been on the way when it was
/// pulled.
std::set<std::optional<sim::Bytes>> outcomes(const Visitor& visitor)
{
    if (visitor.stayed)
        return {visitor.wholeImage()};
    std::set<std::optional<sim::Bytes>> all{imageOf(visitor, visitor.commands)};
    if (visitor.commands > 0)
        all.insert(imageOf(visitor, visitor.commands - 1));
    return all;
}

/// What the program holds at one moment.
struct Held
{
    int descriptors = 0;
    int threads = 0;
    int memory = 0; ///< kB of VmRSS
};

/// `scard watch`, which notes each card by its --exec.
class Kiosk
{
  public:
    explicit Kiosk(const QString& folder)
        : m_program(
              {"watch", "--download", "--to", folder, "--exec",
               "echo \"$PPID $SCARD_EXIT_CODE $1\" >>\"$KIOSK_NOTES\""},
              environment(m_notes.filePath("notes")))
    {}

    RunningProgram& program() { return m_program; }

    /// Of each card the program's process, the exit code, and the file if there is one.
    QStringList notes() const
    {
        return QString::fromUtf8(fileContent(m_notes.filePath("notes"))).split('\n', Qt::SkipEmptyParts);
    }

    static int codeOf(const QString& note) { return note.section(' ', 1, 1).toInt(); }
    static QString fileOf(const QString& note) { return note.section(' ', 2); }

    /// Waits until no card is in it and every one has its note.
    bool isAtRest() { return m_program.says("Card out.\n", static_cast<int>(notes().size())); }

    /// The least of several looks: now and then the program looks at the readers, with one descriptor more.
    Held heldAtRest() const
    {
        Held least = held();
        for (int look = 0; look < 100; ++look) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            const Held next = held();
            least.descriptors = std::min(least.descriptors, next.descriptors);
            least.threads = std::min(least.threads, next.threads);
            least.memory = std::min(least.memory, next.memory);
        }
        return least;
    }

  private:
    static QProcessEnvironment environment(const QString& notes)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("KIOSK_NOTES", notes);
        return environment;
    }

    Held held() const
    {
        const QString folder = "/proc/" + notes().value(0).section(' ', 0, 0);
        Held held;
        held.descriptors = QDir(folder + "/fd").entryList(QDir::Files | QDir::System).size();
        held.threads = QDir(folder + "/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
        for (const QByteArray& line : fileContent(folder + "/status").split('\n'))
            if (line.startsWith("VmRSS:"))
                held.memory = line.simplified().split(' ').value(1).toInt();
        return held;
    }

    QTemporaryDir m_notes;
    RunningProgram m_program;
};

class KioskTest : public testing::Test
{
  protected:
    /// Puts a card in, and takes it out when it is done or at a moment that @p random finds.
    void serve(Visitor& visitor, std::mt19937& random)
    {
        CardInHand hand(visitor.card);
        ASSERT_TRUE(hand.putIn());
        ASSERT_TRUE(slot.waitForNext(SCARD_STATE_PRESENT));
        visitor.stayed = random() % 2 == 0;
        if (visitor.stayed) {
            const sim::Bytes image = visitor.wholeImage();
            EXPECT_TRUE(eventually([this, &image] { return isDone(image); }));
        } else {
            waitForTheHand(*visitor.kind, hand, random);
        }
        hand.takeOut();
        visitor.commands = hand.commandCount();
        visitor.told = isTold(visitor, hand);
        ASSERT_TRUE(slot.waitForNext(SCARD_STATE_EMPTY));
    }

    /// No file but those that the cards of the day may have; of each card at most one.
    void expectFilesOf(const std::vector<Visitor>& day)
    {
        std::map<sim::Bytes, std::size_t> owners;
        for (std::size_t number = 0; number < day.size(); ++number)
            for (const std::optional<sim::Bytes>& image : outcomes(day[number]))
                if (image)
                    owners[*image] = number;

        std::map<std::size_t, std::optional<sim::Bytes>> files;
        const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
        const QStringList names = QDir(folder.path()).entryList(all);
        filesFound = static_cast<int>(names.size());
        for (const QString& name : names) {
            SCOPED_TRACE(name.toStdString());
            const sim::Bytes content = bytes(fileContent(folder.filePath(name)));
            const auto owner = owners.find(content);
            ASSERT_NE(owner, owners.end()) << "nobody's file of " << content.size() << " bytes";
            EXPECT_TRUE(files.emplace(owner->second, content).second) << "card " << owner->second;
        }

        for (std::size_t number = 0; number < day.size(); ++number) {
            const Visitor& visitor = day[number];
            SCOPED_TRACE(
                testing::Message() << "card " << number << ' ' << visitor.kind->name << " after "
                                   << visitor.commands << " commands");
            EXPECT_EQ(outcomes(visitor).count(files[number]), 1u);
            if (visitor.told) {
                EXPECT_TRUE(files[number] == visitor.wholeImage());
            }
            if (visitor.stayed) {
                EXPECT_EQ(visitor.commands, visitor.kind->steps.size());
                EXPECT_EQ(visitor.told, !visitor.kind->isCompany());
            }
        }
    }

    /// Each note says what the manual says of its exit code. @return how often each came
    std::map<int, int> expectNotesByTheManual() const
    {
        std::map<int, int> codes;
        for (const QString& note : kiosk.notes()) {
            SCOPED_TRACE(note.toStdString());
            const int code = Kiosk::codeOf(note);
            ++codes[code];
            if (Kiosk::fileOf(note).isEmpty()) {
                EXPECT_THAT(code, AnyOf(noCard, cardFailed));
            } else {
                EXPECT_THAT(code, AnyOf(done, notTold));
                EXPECT_EQ(QFileInfo(Kiosk::fileOf(note)).path(), folder.path());
            }
        }
        EXPECT_EQ(codes[done] + codes[notTold], filesFound);
        return codes;
    }

    SlotSeen slot;
    QTemporaryDir folder;
    Kiosk kiosk{folder.path()};
    const std::vector<CardKind> kinds = {driverKind(),   driverG2Kind(),   driverV2Kind(),
                                         workshopKind(), workshopG2Kind(), workshopV2Kind(),
                                         companyKind(),  companyG2Kind(),  companyV2Kind()};
    int filesFound = 0;

  private:
    bool isDone(const sim::Bytes& image) const
    {
        const QStringList notes = kiosk.notes();
        return !notes.empty() && Kiosk::codeOf(notes.back()) == done &&
               bytes(fileContent(Kiosk::fileOf(notes.back()))) == image;
    }

    /// Until the card got any number of commands, or some of the last ones, or for any time.
    static void waitForTheHand(const CardKind& kind, const CardInHand& hand, std::mt19937& random)
    {
        const std::size_t all = kind.steps.size();
        const auto stamps = std::count_if(kind.steps.begin(), kind.steps.end(), [](const Step& step) {
            return step.phase == Phase::Stamp;
        });
        const std::size_t last = static_cast<std::size_t>(stamps) + 2;
        std::size_t commands = random() % (all + 1);
        switch (random() % 3) {
        case 0:
            std::this_thread::sleep_for(std::chrono::milliseconds(random() % 500));
            return;
        case 1:
            commands = all - random() % last;
            break;
        default:
            break;
        }
        EXPECT_TRUE(eventually([&hand, commands] { return hand.commandCount() >= commands; }));
    }

    static bool isTold(const Visitor& visitor, const CardInHand& hand)
    {
        const std::uint16_t fid = visitor.kind->writtenFid;
        const sim::Card fresh(visitor.card);
        return std::any_of(
            visitor.card.applications.begin(), visitor.card.applications.end(),
            [&](const sim::ApplicationDescription& application) {
                return fid != 0 && hand.file(application.aid, fid) != *fresh.file(application.aid, fid);
            });
    }
};

TEST_F(KioskTest, EachCardOfTheDayHasOneWholeFileOrNone)
{
    const int cards = numberFromEnvironment("KIOSK_CARDS", usualCards);
    const int seed = numberFromEnvironment("KIOSK_SEED", 1);
    std::cout << "KIOSK_SEED " << seed << ", KIOSK_CARDS " << cards << std::endl;
    std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
    ASSERT_TRUE(slot.waitUntilEmpty());
    ASSERT_TRUE(kiosk.program().complains("scard: Waiting for a card in Simulated reader 00 00.\n"));

    std::vector<Visitor> day;
    Held settled;
    QElapsedTimer time;
    time.start();
    for (int number = 0; number < cards; ++number) {
        day.emplace_back(
            kinds[static_cast<std::size_t>(number) % kinds.size()], static_cast<std::uint32_t>(number));
        SCOPED_TRACE(testing::Message() << "card " << number << ' ' << day.back().kind->name);
        serve(day.back(), random);
        ASSERT_FALSE(HasFailure());
        if (number + 1 == std::min(cards, cardsToSettle)) {
            ASSERT_TRUE(kiosk.isAtRest());
            settled = kiosk.heldAtRest();
        }
    }
    ASSERT_TRUE(kiosk.isAtRest());
    const Held atEnd = kiosk.heldAtRest();
    const double processorTime = kiosk.program().processorTime();
    const qint64 elapsed = time.elapsed();

    ASSERT_TRUE(kiosk.program().isRunning());
    expectFilesOf(day);
    std::map<int, int> codes = expectNotesByTheManual();
    EXPECT_THAT(QDir("/tmp").entryList({"*.DDD"}), IsEmpty()) << "what is finished was brought away";
    EXPECT_EQ(atEnd.descriptors, settled.descriptors);
    EXPECT_EQ(atEnd.threads, settled.threads);
#ifndef SCARD_SANITIZED
    EXPECT_LE(atEnd.memory, settled.memory + 2048); // sanitizers keep what was freed
#endif
    EXPECT_LT(processorTime, static_cast<double>(elapsed) / 2) << "a loop that spins takes all of it";

    const int notes = static_cast<int>(kiosk.notes().size());
    kiosk.program().sendSignal(SIGTERM);
    const Outcome outcome = kiosk.program().finish();
    EXPECT_EQ(outcome.exitCode, done);
    EXPECT_EQ(QString::fromStdString(outcome.out).count("Card in: "), notes);

    const auto stayed =
        std::count_if(day.begin(), day.end(), [](const Visitor& visitor) { return visitor.stayed; });
    std::cout << cards << " cards, " << stayed << " stayed, " << filesFound
              << " files (exit codes: " << codes[done] << " done, " << codes[notTold] << " not told, "
              << codes[cardFailed] << " failed, " << codes[noCard] << " without a card); descriptors "
              << settled.descriptors << " / " << atEnd.descriptors << ", threads " << settled.threads << " / "
              << atEnd.threads << ", VmRSS " << settled.memory << " / " << atEnd.memory
              << " kB after 10 / all cards; processor time of its main thread " << processorTime << " ms in "
              << static_cast<double>(elapsed) / 1000 << " s" << std::endl;
}

} // namespace

// The program scard-simcard as its user sees it: options, output, exit codes.

#include "Card.h"
#include "CompanyCard.h"
#include "DriverCard.h"
#include "FakeReader.h"
#include "RowName.h"
#include "TestPki.h"
#include "TestPkiG2.h"
#include "WorkshopCard.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

using sim::Bytes;
using sim::fromHex;
using sim::toHex;

Bytes bytesOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

/// The program with its output caught.
class Program
{
  public:
    explicit Program(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), SIMCARD_PROGRAM);
        std::vector<char*> argv;
        for (std::string& argument : arguments) {
            argv.push_back(argument.data());
        }
        argv.push_back(nullptr);

        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) {
            throw std::runtime_error("no pipe");
        }
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
        ::posix_spawn_file_actions_addclose(&actions, ends[0]);
        const int error = ::posix_spawn(&m_process, SIMCARD_PROGRAM, &actions, nullptr, argv.data(), environ);
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
        m_output = ends[0];
        if (error != 0) {
            throw std::runtime_error("the program does not start");
        }
    }

    ~Program()
    {
        if (m_process > 0) {
            ::kill(m_process, SIGKILL);
            ::waitpid(m_process, nullptr, 0);
        }
        ::close(m_output);
    }

    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void signal(int number) const { ::kill(m_process, number); }

    std::string firstLine()
    {
        std::string line;
        char c = 0;
        while (::read(m_output, &c, 1) == 1 && c != '\n') {
            line += c;
        }
        return line;
    }

    /// Waits for the end; the exit code, or -1 for another end.
    int exitCode()
    {
        int status = 0;
        ::waitpid(m_process, &status, 0);
        m_process = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t m_process = 0;
    int m_output = -1;
};

std::string ask(FakeReader& reader, const char* message)
{
    const auto answer = reader.ask(fromHex(message));
    return answer ? toHex(*answer) : "gone";
}

TEST(SimcardProgram, servesADriverCardUntilItIsInterrupted)
{
    for (const int number : {SIGINT, SIGTERM}) {
        FakeReader reader;
        Program program(
            {"--port", std::to_string(reader.port()), "--days", "3", "--events", "6", "--places", "100"});
        ASSERT_TRUE(reader.acceptCard());
        EXPECT_EQ(
            program.firstLine(),
            "Card of kind driver-g1 is in the reader at 127.0.0.1:" + std::to_string(reader.port()));
        EXPECT_EQ(ask(reader, "04"), toHex(sim::DefaultAtr));
        EXPECT_EQ(ask(reader, "00 A4 04 0C 06 FF 54 41 43 48 4F"), "90 00");
        EXPECT_EQ(ask(reader, "00 A4 02 0C 02 05 01"), "90 00");
        EXPECT_EQ(ask(reader, "00 B0 00 00 0A"), "01 00 00 06 18 35 D0 00 C8 64 90 00");
        program.signal(number);
        EXPECT_EQ(program.exitCode(), 0);
        EXPECT_TRUE(reader.cardIsGone());
    }
}

TEST(SimcardProgram, servesTheCardThatItsOptionsDescribe)
{
    sim::DriverParameters parameters;
    parameters.seed = 5;
    parameters.nation = 0x28;
    parameters.codePage = 2;
    parameters.days = 4;
    parameters.lastDay = 1718668800; // 2024-06-18
    parameters.faultsPerType = 12;
    parameters.activityLength = 5544;
    parameters.vehicles = 84;
    parameters.surname = "Łoś";
    parameters.firstNames = "Ewa";
    const sim::Card expected(sim::makeDriverCardG1(parameters));

    FakeReader reader;
    Program program({"--port",        std::to_string(reader.port()),
                     "--host",        "127.0.0.1",
                     "--seed",        "5",
                     "--nation",      "28",
                     "--code-page",   "2",
                     "--days",        "4",
                     "--last-day",    "2024-06-18",
                     "--faults",      "12",
                     "--activity",    "5544",
                     "--vehicles",    "84",
                     "--surname",     "Łoś",
                     "--first-names", "Ewa",
                     "--kind",        "driver-g1",
                     "--bit-rate",    "10000000"});
    ASSERT_TRUE(reader.acceptCard());
    ask(reader, "00 A4 04 0C 06 FF 54 41 43 48 4F");
    ask(reader, "00 A4 02 0C 02 05 20");
    EXPECT_EQ(ask(reader, "00 B0 00 00 8F"), toHex(*expected.file(sim::AidG1, 0x0520)) + " 90 00");
    ask(reader, "00 A4 02 0C 02 05 04");
    EXPECT_EQ(
        ask(reader, "00 B0 00 00 64"),
        toHex(sim::slice(*expected.file(sim::AidG1, 0x0504), 0, 100)) + " 90 00");
    EXPECT_EQ(ask(reader, "00 B0 15 AC 01"), "67 00") << "the end of the buffer";
}

TEST(SimcardProgram, servesADriverCardOfTheSecondGeneration)
{
    sim::DriverParametersG2 parameters;
    parameters.version2 = true;
    parameters.first.seed = 5;
    parameters.first.eventsPerType = 6;
    parameters.eventsPerType = 6;
    parameters.first.faultsPerType = 12;
    parameters.faultsPerType = 12;
    parameters.first.activityLength = 5544;
    parameters.activityLength = 5544;
    parameters.first.vehicles = 84;
    parameters.vehicles = 84;
    parameters.first.places = 85;
    parameters.places = 85;
    parameters.curve = sim::Curve::BrainpoolP384r1;
    parameters.certificateFiles = sim::CertificateFiles::Padded;
    parameters.linkCertificate = sim::CertificateFiles::Padded;
    const sim::Card expected(sim::makeDriverCardG2(parameters));

    FakeReader reader;
    Program program({"--port",         std::to_string(reader.port()),
                     "--kind",         "driver-g2v2",
                     "--seed",         "5",
                     "--events",       "6",
                     "--faults",       "12",
                     "--activity",     "5544",
                     "--vehicles",     "84",
                     "--places",       "85",
                     "--curve",        "brainpool-p384r1",
                     "--certificates", "padded"});
    ASSERT_TRUE(reader.acceptCard());
    ask(reader, "00 A4 04 0C 06 FF 54 41 43 48 4F");
    ask(reader, "00 A4 02 0C 02 05 01");
    EXPECT_EQ(ask(reader, "00 B0 00 00 0A"), "01 00 00 06 0C 15 A8 00 54 55 90 00");
    ask(reader, "00 A4 04 0C 06 FF 53 4D 52 44 54");
    EXPECT_EQ(ask(reader, "00 B0 81 00 11"), "01 01 01 06 0C 15 A8 00 54 00 55 01 50 00 70 00 C8 90 00");
    for (const std::uint16_t fid : {std::uint16_t{0xC101}, std::uint16_t{0xC109}}) {
        Bytes bytes;
        sim::appendU16(bytes, fid);
        ask(reader, ("00 A4 02 0C 02 " + toHex(bytes)).c_str());
        const Bytes& certificate = *expected.file(sim::AidG2, fid);
        EXPECT_EQ(ask(reader, "00 B0 00 00 00"), toHex(sim::slice(certificate, 0, 256)) + " 90 00");
        EXPECT_EQ(ask(reader, "00 B0 01 54 01"), "00 90 00") << "padded up to 341 bytes";
        EXPECT_EQ(ask(reader, "00 B0 01 55 01"), "67 00");
    }
}

TEST(SimcardProgram, servesTheFirstVersionOfTheSecondGeneration)
{
    FakeReader reader;
    Program program(
        {"--port", std::to_string(reader.port()), "--kind", "driver-g2", "--certificates", "missing"});
    ASSERT_TRUE(reader.acceptCard());
    EXPECT_EQ(
        program.firstLine(),
        "Card of kind driver-g2 is in the reader at 127.0.0.1:" + std::to_string(reader.port()));
    ask(reader, "00 A4 04 0C 06 FF 53 4D 52 44 54");
    EXPECT_EQ(ask(reader, "00 B0 81 00 03"), "01 01 00 90 00");
    EXPECT_EQ(ask(reader, "00 A4 02 0C 02 05 25"), "6A 82");
    EXPECT_EQ(ask(reader, "00 A4 02 0C 02 C1 01"), "6A 82");
    EXPECT_EQ(ask(reader, "00 A4 02 0C 02 C1 09"), "6A 82");
}

TEST(SimcardProgram, knowsEveryCurveAndFormOfCertificates)
{
    const std::pair<const char*, std::size_t> curves[] = {
        {"nist-p256", 204},        {"brainpool-p256r1", 205}, {"nist-p384", 266},
        {"brainpool-p384r1", 270}, {"brainpool-p512r1", 337}, {"nist-p521", 341},
    };
    const auto sizeOfCertificate = [](const char* curve, const char* form) -> std::size_t {
        FakeReader reader;
        const std::string port = std::to_string(reader.port());
        Program program(
            {"--port", port, "--kind", "driver-g2", "--days", "2", "--curve", curve, "--certificates", form});
        EXPECT_TRUE(reader.acceptCard());
        ask(reader, "00 A4 04 0C 06 FF 53 4D 52 44 54");
        ask(reader, "00 A4 02 0C 02 C1 08");
        std::size_t size = 0;
        while (size < 400) {
            Bytes offset;
            sim::appendU16(offset, static_cast<std::uint32_t>(size));
            if (ask(reader, ("00 B0 " + toHex(offset) + " 01").c_str()).size() != 8) {
                break;
            }
            ++size;
        }
        return size;
    };
    for (const auto& [curve, size] : curves) {
        EXPECT_EQ(sizeOfCertificate(curve, "exact"), size) << curve;
    }
    EXPECT_EQ(sizeOfCertificate("nist-p384", "padded"), 341u);
    EXPECT_EQ(sizeOfCertificate("nist-p384", "empty"), 204u);
    EXPECT_EQ(sizeOfCertificate("nist-p384", "missing"), 0u);
}

struct KindRow
{
    const char* name;
    const char* kind;
    /// The first three bytes of EF_Application_Identification in each application.
    const char* first;
    const char* second;
    /// Of version 2.
    const char* applicationIdentificationV2;
};

void PrintTo(const KindRow& row, std::ostream* out)
{
    *out << row.name;
}

class KindOfCard : public testing::TestWithParam<KindRow>
{};

TEST_P(KindOfCard, isServed)
{
    FakeReader reader;
    Program program(
        {"--port", std::to_string(reader.port()), "--kind", GetParam().kind, "--curve", "brainpool-p256r1",
         "--last-day", "2024-06-18"});
    ASSERT_TRUE(reader.acceptCard());
    EXPECT_EQ(
        program.firstLine(), std::string("Card of kind ") + GetParam().kind +
                                 " is in the reader at 127.0.0.1:" + std::to_string(reader.port()));
    ask(reader, "00 A4 04 0C 06 FF 54 41 43 48 4F");
    ask(reader, "00 A4 02 0C 02 05 01");
    EXPECT_EQ(ask(reader, "00 B0 00 00 03"), GetParam().first + std::string(" 90 00"));
    const bool isSecond = GetParam().second != std::string();
    EXPECT_EQ(ask(reader, "00 A4 04 0C 06 FF 53 4D 52 44 54"), isSecond ? "90 00" : "6A 82");
    if (isSecond) {
        EXPECT_EQ(ask(reader, "00 B0 81 00 03"), GetParam().second + std::string(" 90 00"));
        EXPECT_EQ(ask(reader, "00 B0 82 00 04"), "7F 21 81 C9 90 00") << "a certificate of the chosen curve";
        const bool isVersion2 = GetParam().applicationIdentificationV2 != std::string();
        EXPECT_EQ(
            ask(reader, "00 B0 96 00 02"),
            isVersion2 ? GetParam().applicationIdentificationV2 + std::string(" 90 00") : "6A 82");
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, KindOfCard,
    testing::Values(
        KindRow{"driverG1", "driver-g1", "01 00 00", "", ""},
        KindRow{"driverG2", "driver-g2", "01 00 00", "01 01 00", ""},
        KindRow{"driverG2v2", "driver-g2v2", "01 00 00", "01 01 01", "00 08"},
        KindRow{"workshopG1", "workshop-g1", "02 00 00", "", ""},
        KindRow{"workshopG2", "workshop-g2", "02 00 00", "02 01 00", ""},
        KindRow{"workshopG2v2", "workshop-g2v2", "02 00 00", "02 01 01", "00 08"},
        KindRow{"controlG1", "control-g1", "03 00 00", "", ""},
        KindRow{"controlG2", "control-g2", "03 00 00", "03 01 00", ""},
        KindRow{"controlG2v2", "control-g2v2", "03 00 00", "03 01 01", "00 02"},
        KindRow{"companyG1", "company-g1", "04 00 00", "", ""},
        KindRow{"companyG2", "company-g2", "04 00 00", "04 01 00", ""},
        KindRow{"companyG2v2", "company-g2v2", "04 00 00", "04 01 01", "00 02"}),
    RowName());

std::string readAll(FakeReader& reader, const char* select, std::size_t size)
{
    ask(reader, select);
    return ask(reader, ("00 B0 00 00 " + toHex({static_cast<std::uint8_t>(size)})).c_str());
}

TEST(SimcardProgram, servesTheWorkshopCardThatItsOptionsDescribe)
{
    sim::WorkshopParametersG2 parameters;
    parameters.first.seed = 5;
    parameters.first.nation = 0x28;
    parameters.first.codePage = 2;
    parameters.first.lastCalibration = 1718712000; // 2024-06-18 12:00
    parameters.first.calibrations = 88;
    parameters.calibrations = 88;
    parameters.first.usedCalibrations = 100;
    parameters.first.vehicles = 4;
    parameters.vehicles = 4;
    parameters.first.workshopName = "Łoś";
    parameters.first.surname = "Łoś";
    parameters.first.firstNames = "Ewa";
    const sim::Card expected(sim::makeWorkshopCardG2(parameters));

    FakeReader reader;
    Program program(
        {"--port",
         std::to_string(reader.port()),
         "--kind",
         "workshop-g2",
         "--seed",
         "5",
         "--nation",
         "28",
         "--code-page",
         "2",
         "--last-day",
         "2024-06-18",
         "--calibrations",
         "88",
         "--used-calibrations",
         "100",
         "--vehicles",
         "4",
         "--firm",
         "Łoś",
         "--surname",
         "Łoś",
         "--first-names",
         "Ewa"});
    ASSERT_TRUE(reader.acceptCard());
    for (const auto& [select, aid] :
         {std::make_pair("00 A4 04 0C 06 FF 54 41 43 48 4F", sim::AidG1),
          std::make_pair("00 A4 04 0C 06 FF 53 4D 52 44 54", sim::AidG2)}) {
        ask(reader, select);
        EXPECT_EQ(
            readAll(reader, "00 A4 02 0C 02 05 20", 211), toHex(*expected.file(aid, 0x0520)) + " 90 00");
        const Bytes& calibration = *expected.file(aid, 0x050A);
        EXPECT_EQ(
            readAll(reader, "00 A4 02 0C 02 05 0A", 255), toHex(sim::slice(calibration, 0, 255)) + " 90 00");
        Bytes end;
        sim::appendU16(end, static_cast<std::uint32_t>(calibration.size()));
        EXPECT_EQ(ask(reader, ("00 B0 " + toHex(end) + " 01").c_str()), "67 00");
        const Bytes& vehicles = *expected.file(aid, 0x0505);
        EXPECT_EQ(readAll(reader, "00 A4 02 0C 02 05 05", vehicles.size()), toHex(vehicles) + " 90 00");
    }
}

TEST(SimcardProgram, servesTheCompanyCardThatItsOptionsDescribe)
{
    sim::CompanyParametersG2 parameters;
    parameters.first.seed = 5;
    parameters.first.companyName = "Spedition Ost";
    parameters.first.activityRecords = 3;
    parameters.activityRecords = 3;
    const sim::Card expected(sim::makeCompanyCardG2(parameters));

    FakeReader reader;
    Program program(
        {"--port", std::to_string(reader.port()), "--kind", "company-g2", "--seed", "5", "--firm",
         "Spedition Ost", "--activities", "3", "--refuse-hash", "6D00"});
    ASSERT_TRUE(reader.acceptCard());
    ask(reader, "00 A4 04 0C 06 FF 54 41 43 48 4F");
    EXPECT_EQ(
        readAll(reader, "00 A4 02 0C 02 05 0D", 140), toHex(*expected.file(sim::AidG1, 0x050D)) + " 90 00");
    EXPECT_EQ(ask(reader, "80 2A 90 00"), "6D 00");
    ask(reader, "00 A4 04 0C 06 FF 53 4D 52 44 54");
    EXPECT_EQ(
        readAll(reader, "00 A4 02 0C 02 05 20", 139), toHex(*expected.file(sim::AidG2, 0x0520)) + " 90 00");
    EXPECT_EQ(
        readAll(reader, "00 A4 02 0C 02 05 0D", 140), toHex(*expected.file(sim::AidG2, 0x050D)) + " 90 00");
}

TEST(SimcardProgram, refusesToSignWhereItIsToldTo)
{
    FakeReader reader;
    Program program(
        {"--port", std::to_string(reader.port()), "--kind", "control-g1", "--refuse-sign", "6982"});
    ASSERT_TRUE(reader.acceptCard());
    ask(reader, "00 A4 04 0C 06 FF 54 41 43 48 4F");
    EXPECT_EQ(readAll(reader, "00 A4 02 0C 02 05 01", 5), "03 00 00 00 E6 90 00");
    EXPECT_EQ(ask(reader, "80 2A 90 00"), "90 00");
    EXPECT_EQ(ask(reader, "00 2A 9E 9A 80"), "69 82");
}

TEST(SimcardProgram, failsAndPullsTheCardAtTheChosenCommands)
{
    FakeReader reader;
    Program program({"--port", std::to_string(reader.port()), "--fail-at", "0:6400", "--pull-at", "2"});
    ASSERT_TRUE(reader.acceptCard());
    EXPECT_EQ(ask(reader, "00 A4 02 0C 02 00 02"), "64 00");
    EXPECT_EQ(ask(reader, "00 A4 02 0C 02 00 02"), "90 00");
    EXPECT_EQ(ask(reader, "00 B0 00 00 19"), "gone");
    EXPECT_EQ(program.exitCode(), 0);
}

TEST(SimcardProgram, changesAnAnswerOnItsWay)
{
    FakeReader reader;
    Program program({"--port", std::to_string(reader.port()), "--change-at", "2"});
    ASSERT_TRUE(reader.acceptCard());
    EXPECT_EQ(ask(reader, "00 A4 04 0C 06 FF 54 41 43 48 4F"), "90 00");
    EXPECT_EQ(ask(reader, "00 A4 02 0C 02 05 01"), "90 00");
    EXPECT_EQ(ask(reader, "00 B0 00 00 01"), "00 90 00");
    EXPECT_EQ(ask(reader, "00 B0 00 00 01"), "01 90 00");
}

TEST(SimcardProgram, writesTheRootKeysOfItsCards)
{
    const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "simcard-roots";
    std::filesystem::create_directories(folder);
    Program program({"--write-roots", folder.string()});
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_EQ(bytesOf(folder / "root-g1.bin"), sim::rootKeyG1());
    for (const sim::CurveDescription& row : sim::curves()) {
        EXPECT_EQ(
            bytesOf(folder / ("root-g2-" + std::string(row.name) + ".bin")),
            sim::rootCertificateG2(row.curve));
    }
}

TEST(SimcardProgram, saysWhenRootKeysCannotBeWritten)
{
    Program program({"--write-roots", "/nowhere"});
    EXPECT_EQ(program.exitCode(), 1);
}

TEST(SimcardProgram, endsWhenTheReaderGoes)
{
    FakeReader reader;
    Program program({"--port", std::to_string(reader.port())});
    ASSERT_TRUE(reader.acceptCard());
    reader.hangUp();
    EXPECT_EQ(program.exitCode(), 0);
}

TEST(SimcardProgram, failsWithoutAReader)
{
    FakeReader reader(FakeReader::Start::Deaf);
    Program program({"--port", std::to_string(reader.port()), "--connect-timeout", "0"});
    EXPECT_EQ(program.firstLine(), "scard-simcard: no reader at 127.0.0.1:" + std::to_string(reader.port()));
    EXPECT_EQ(program.exitCode(), 1);
}

TEST(SimcardProgram, explainsItself)
{
    Program program({"--help"});
    EXPECT_EQ(program.firstLine(), "Usage: scard-simcard [options]");
    EXPECT_EQ(program.exitCode(), 0);
}

struct ArgumentRow
{
    const char* name;
    std::vector<std::string> arguments;
};

void PrintTo(const ArgumentRow& row, std::ostream* out)
{
    *out << row.name;
}

class WrongArguments : public testing::TestWithParam<ArgumentRow>
{};

TEST_P(WrongArguments, areRefused)
{
    Program program(GetParam().arguments);
    EXPECT_NE(program.firstLine(), "");
    EXPECT_EQ(program.exitCode(), 2);
}

INSTANTIATE_TEST_SUITE_P(
    All, WrongArguments,
    testing::Values(
        ArgumentRow{"anUnknownOption", {"--unknown"}}, ArgumentRow{"anOptionWithoutItsValue", {"--port"}},
        ArgumentRow{"aPortTooLarge", {"--port", "65536"}}, ArgumentRow{"aPortWithLetters", {"--port", "12x"}},
        ArgumentRow{"anEmptyPort", {"--port", ""}}, ArgumentRow{"noDays", {"--days", "0"}},
        ArgumentRow{"negativeDays", {"--days", "-1"}}, ArgumentRow{"tooManyEvents", {"--events", "256"}},
        ArgumentRow{"aNationWithoutNumber", {"--nation", "XY"}},
        ArgumentRow{"aCodePageThatDoesNotExist", {"--code-page", "12"}},
        ArgumentRow{"aDayThatDoesNotExist", {"--last-day", "2024-02-30"}},
        ArgumentRow{"aDateWithoutHyphens", {"--last-day", "20240305"}},
        ArgumentRow{"aDateWithoutDay", {"--last-day", "2024-03"}},
        ArgumentRow{"anUnknownKind", {"--kind", "driver-g9"}},
        ArgumentRow{"aWorkshopWithTooManyRecords", {"--kind", "workshop-g1", "--calibrations", "256"}},
        ArgumentRow{"aControlCardWithoutActivities", {"--kind", "control-g2", "--activities", "0"}},
        ArgumentRow{"aRefusalWithoutStatusWord", {"--refuse-hash", ""}},
        ArgumentRow{"aRefusalThatIsASuccess", {"--refuse-sign", "9000"}},
        ArgumentRow{"anUnknownCurve", {"--curve", "P-256"}},
        ArgumentRow{"anUnknownFormOfCertificates", {"--certificates", "none"}},
        ArgumentRow{"aSecondGenerationWithoutPlaces", {"--kind", "driver-g2", "--places", "0"}},
        ArgumentRow{"aFaultWithoutStatusWord", {"--fail-at", "5"}},
        ArgumentRow{"aFaultWithAnEmptyStatusWord", {"--fail-at", "5:"}},
        ArgumentRow{"aFaultWithALongStatusWord", {"--fail-at", "5:10000"}},
        ArgumentRow{"aPullWithoutNumber", {"--pull-at", "x"}},
        ArgumentRow{"aLineWithoutSpeed", {"--bit-rate", "0"}},
        ArgumentRow{"aNameOfAnotherCodePage", {"--surname", "Łoś"}},
        ArgumentRow{"anArgumentThatIsNoOption", {"card"}}),
    RowName());

} // namespace

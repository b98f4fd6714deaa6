// `scard verify`, and what `scard show` says of signatures.
#include "Downloads.h"

#include <simulator/TestPki.h>
#include <simulator/TestPkiG2.h>
#include <support/FileRecords.h>
#include <support/Program.h>

#include <gmock/gmock.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

using namespace test;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

QByteArray byteArray(const sim::Bytes& bytes)
{
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));
}

class VerifyTest : public testing::Test
{
  protected:
    QString write(const QString& name, const QByteArray& bytes) const { return m_folder.write(name, bytes); }
    QString path(const QString& name) const { return m_folder.path(name); }

    /// Names the root keys of both generations.
    QStringList roots() const
    {
        return {
            "--root", write("root1", byteArray(sim::rootKeyG1())), "--root",
            write("root2", byteArray(sim::rootCertificateG2(sim::Curve::NistP256)))};
    }

    Outcome verify(const QStringList& files) const { return run(QStringList{"verify"} + roots() + files); }

  private:
    Folder m_folder;
};

/// The first line, without the name of the file in front.
std::string verdictOf(const Outcome& outcome)
{
    const std::string line = outcome.out.substr(0, outcome.out.find('\n'));
    return line.substr(line.find(": ") + 2);
}

QJsonObject jsonOf(const Outcome& outcome)
{
    EXPECT_EQ(schemaErrors("verify", outcome.out), "");
    return QJsonDocument::fromJson(QByteArray::fromStdString(outcome.out)).object();
}

/// A driver card of both generations, one byte of its vehicles changed in the second.
QByteArray alteredFile()
{
    QByteArray file = smallDownload("driverG2").file;
    const int at = recordOf(file, 0x0505, 2).begin() + 7;
    file[at] = static_cast<char>(file[at] ^ 1);
    return file;
}

TEST_F(VerifyTest, SaysTheVerdictInOneLineAndEndsByIt)
{
    const struct
    {
        const char* name;
        QByteArray file;
        int exitCode;
        const char* verdict;
    } rows[] = {
        {"driver", smallDownload("driver").file, 0,
         "genuine: 12 of 12 signatures of the first generation hold, up to the root keys that were given"},
        {"second", smallDownload("driverG2").file, 0,
         "genuine: 26 of 26 signatures hold, up to the root keys that were given"},
        {"company", smallDownload("companyG2").file, 8, "unproven: 2 of 2 signatures hold"},
        {"altered", alteredFile(), 9, "altered: 25 of 26 signatures hold"},
        {"no card", QByteArray("no download at all"), 7, "unproven: 0 of 0 signatures hold"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = verify({write("card.ddd", row.file)});
        EXPECT_EQ(outcome.exitCode, row.exitCode) << row.name;
        EXPECT_EQ(verdictOf(outcome), row.verdict);
        EXPECT_EQ(outcome.err, "");
    }
}

TEST_F(VerifyTest, WithoutRootKeysTheRootIsUnknown)
{
    const Outcome second = run({"verify", write("card.ddd", smallDownload("driverG2").file)});
    EXPECT_EQ(second.exitCode, 8);
    EXPECT_EQ(
        verdictOf(second),
        "root unknown: 14 of 26 signatures hold, 12 cannot be checked, a root key was not given");
    const Outcome first = run({"verify", write("first.ddd", smallDownload("driver").file)});
    EXPECT_EQ(first.exitCode, 8);
    EXPECT_EQ(
        verdictOf(first), "root unknown: 0 of 12 signatures of the first generation hold, 12 cannot be "
                          "checked, a root key was not given");
    EXPECT_THAT(
        first.out,
        HasSubstr("Reasons:\n  root unknown  first generation: The root key FD 45 43 20 00 54 4B 01 "));
}

TEST_F(VerifyTest, ShowsChainRecordsAndReasons)
{
    const Outcome outcome = verify({write("C_20240305_1407_J_Mustermann_D1.DDD", alteredFile())});
    const auto lines = QString::fromStdString(outcome.out).split('\n');
    EXPECT_THAT(
        lines[1].toStdString(), StartsWith("Downloaded 2024-03-05 14:07 UTC, by the file's name. SHA-256 "));
    EXPECT_THAT(
        outcome.out,
        HasSubstr(
            "\nFirst generation, driver card: genuine, 12 of 12 signatures hold\n"
            "  key of                   identifier               certificate    algorithm        valid\n"
            "  root                     FD 45 43 20 00 54 4B 01  given          RSA-1024\n"));
    EXPECT_THAT(
        outcome.out, HasSubstr("\n  FID   EF                                  bytes  signature\n"
                               "  0002  EF_ICC                                 25  none needed\n"
                               "  0005  EF_IC                                   8  none needed\n"
                               "  0501  EF_Application_Identification          10  holds\n"));
    EXPECT_THAT(
        outcome.out, HasSubstr("\nSecond generation, driver card: altered, 13 of 14 signatures hold\n"));
    EXPECT_THAT(outcome.out, HasSubstr("  0505  EF_Vehicles_Used                       98  DOES NOT HOLD\n"));
    // The heaviest reason first.
    EXPECT_THAT(
        outcome.out,
        HasSubstr("\nReasons:\n"
                  "  altered       second generation: EF_Vehicles_Used: the signature does not hold. "));
    EXPECT_THAT(
        outcome.out, HasSubstr("\n  note          second generation: EF_Link_Certificate was not checked: "));
    EXPECT_THAT(
        outcome.out, HasSubstr("\nBytes that nothing vouches for:\n"
                               "  offset     bytes  of                                 generation\n"
                               "         0       6  EF_ICC                             1\n"));
}

TEST_F(VerifyTest, TellsTheSameAsJson)
{
    const QString genuine = write("C_20240305_1407_J_Mustermann_D1.DDD", smallDownload("driverG2").file);
    const QString altered = write("altered.ddd", alteredFile());
    const Outcome outcome = verify({"--json", genuine, path("nowhere.ddd"), altered});
    EXPECT_EQ(outcome.exitCode, 9);
    EXPECT_THAT(outcome.err, StartsWith("scard: " + path("nowhere.ddd").toStdString() + " cannot be read: "));
    const QJsonArray downloads = jsonOf(outcome)["downloads"].toArray();
    ASSERT_EQ(downloads.size(), 2);
    const QJsonObject first = downloads[0].toObject();
    EXPECT_EQ(first["verdict"].toString(), "genuine");
    EXPECT_EQ(first["file"]["path"].toString(), genuine);
    EXPECT_EQ(first["downloaded_at"].toString(), "2024-03-05T14:07:00Z");
    EXPECT_EQ(first["signatures"]["valid"].toInt(), 26);
    EXPECT_EQ(first["signatures"]["expected"].toInt(), 26);
    EXPECT_EQ(first["applications"][1]["chain"][0]["verdict"].toString(), "trusted");
    EXPECT_EQ(first["applications"][1]["chain"][4]["key_of"].toString(), "card_sign");
    EXPECT_EQ(first["applications"][1]["chain"][4]["algorithm"].toString(), "NIST P-256");
    EXPECT_EQ(first["applications"][0]["records"][2]["signature"].toString(), "valid");
    EXPECT_EQ(first["applications"][0]["records"][2]["fid"].toString(), "0501");
    EXPECT_EQ(first["uncovered"][0]["ef"].toString(), "EF_ICC");
    const QJsonObject second = downloads[1].toObject();
    EXPECT_EQ(second["verdict"].toString(), "altered");
    EXPECT_TRUE(second["downloaded_at"].isNull());
    EXPECT_EQ(second["findings"][1]["name"].toString(), "signature_invalid");
    EXPECT_EQ(second["findings"][1]["code"].toInt(), 21);
    EXPECT_EQ(second["findings"][1]["fid"].toString(), "0505");
    EXPECT_EQ(second["findings"][1]["offset"].toInt(), recordOf(alteredFile(), 0x0505, 2).offset);
}

TEST_F(VerifyTest, TheSchemaHoldsForEveryKindOfFile)
{
    QStringList files;
    for (const CardFile& download : smallDownloads()) {
        const QString name = QString::fromLatin1(download.name);
        QByteArray foreign = download.file;
        for (const FileRecord& record : recordsOf(download.file))
            foreign[record.offset + 2] = static_cast<char>(record.type ^ 2);
        files << write(name + "-whole.ddd", download.file)
              << write(name + "-cut.ddd", download.file.left(download.file.size() / 2))
              << write(
                     name + "-unsigned.ddd",
                     without(download.file, [](const FileRecord& record) { return record.type & 1; }))
              << write(name + "-foreign.ddd", foreign);
    }
    for (const Outcome& outcome :
         {verify(QStringList{"--json"} + files), run(QStringList{"verify", "--json"} + files)}) {
        EXPECT_EQ(jsonOf(outcome)["downloads"].toArray().size(), files.size());
        EXPECT_EQ(outcome.exitCode, 9);
    }
}

TEST_F(VerifyTest, OfSeveralFilesTheWorstDecides)
{
    const QString genuine = write("genuine.ddd", smallDownload("driver").file);
    const QString company = write("company.ddd", smallDownload("companyG2").file);
    const QString altered = write("altered.ddd", alteredFile());
    EXPECT_EQ(verify({genuine, genuine}).exitCode, 0);
    EXPECT_EQ(verify({company, genuine}).exitCode, 8);
    EXPECT_EQ(verify({altered, company, path("nowhere")}).exitCode, 9);
    EXPECT_EQ(verify({genuine, path("nowhere")}).exitCode, 1);
    EXPECT_EQ(verify({write("empty.ddd", {}), genuine}).exitCode, 7);
    const Outcome both = verify({genuine, altered});
    EXPECT_THAT(both.out, HasSubstr("\n\n" + altered.toStdString() + ": altered: "));
}

TEST_F(VerifyTest, AnExpiredCertificateIsAWarningWithBothDates)
{
    // The simulated workshop card's certificates are valid for a year.
    const QString file = write("C_20300305_1407_J_Mustermann_D1.DDD", smallDownload("workshop").file);
    const Outcome outcome = verify({file});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(
        outcome.out,
        testing::ContainsRegex("  warning       first generation: EF_Card_Certificate: the certificate was "
                               "valid until 2025-[0-9-]+, the card was downloaded on 2030-03-05\\.\n"));
}

TEST_F(VerifyTest, KnowsTheTimeOfTheDownloadByEachConventionOfNames)
{
    for (const char* name :
         {"C_20240305_1407_J_Mustermann_D2570168762740.DDD", "D__DF0000001234562403051407.C1B",
          "C_DF00000012345600_D_20240305_1407.TGD", "C_20240305_1407_Company Card_00F1E2D3012001.DDD",
          "CARD_20240305_140733_00F1E2D3.DDD"}) {
        const Outcome outcome = verify({write(name, smallDownload("driver").file)});
        EXPECT_THAT(outcome.out, HasSubstr("\nDownloaded 2024-03-05 14:07 UTC, by the file's name.")) << name;
    }
    for (const char* name :
         {"card.ddd", "C_20241305_1407_J_Mustermann_D2570168762740.DDD", "20240305.ddd", "2403051407.ddd"}) {
        const Outcome outcome = verify({write(name, smallDownload("driver").file)});
        EXPECT_THAT(outcome.out, Not(HasSubstr("Downloaded"))) << name;
    }
}

TEST_F(VerifyTest, ARootKeyMustBeOne)
{
    const QString file = write("card.ddd", smallDownload("driver").file);
    const struct
    {
        QString root;
        const char* reason;
    } rows[] = {
        {path("nowhere"), "No such file or directory"},
        {path("."), "it is a folder"},
        {"/dev/zero", "it is no ordinary file"},
        {write("empty", {}), "it is neither 144 bytes of a root key nor a root certificate"},
        {file, "it is neither 144 bytes of a root key nor a root certificate"},
        {write("link", byteArray(sim::linkCertificateG2(sim::Curve::NistP256))),
         "it is the certificate of FD 45 43 20 20 54 4B 01, signed by FD 45 43 20 10 54 4B 01, and not "
         "signed "
         "with its own key"},
    };
    for (const char* command : {"verify", "show"}) {
        for (const auto& row : rows) {
            const Outcome outcome = run({command, "--root", row.root, file});
            EXPECT_EQ(outcome.exitCode, 1);
            EXPECT_EQ(outcome.out, "");
            EXPECT_EQ(
                outcome.err, "scard: " + row.root.toStdString() + " gives no root key: " + row.reason +
                                 ".\nName the file as the authority publishes it.\n");
        }
    }
}

TEST_F(VerifyTest, RefusesWhatItDoesNotKnow)
{
    EXPECT_EQ(run({"verify"}).err, "scard verify: no file given.\nSee: scard verify --help\n");
    EXPECT_EQ(run({"verify"}).exitCode, 1);
    EXPECT_EQ(
        run({"verify", "--root", "", "card.ddd"}).err,
        "scard verify: --root needs a file.\nSee: scard verify --help\n");
    EXPECT_EQ(
        run({"verify", "--csv", "x"}).err, "scard verify: Unknown option 'csv'.\nSee: scard verify --help\n");
}

TEST_F(VerifyTest, TellsWhenItsOutputIsLost)
{
    const QString file = write("card.ddd", smallDownload("driver").file);
    const Outcome full = run(QStringList{"verify"} + roots() + QStringList{file}, {}, Output::FullDisk);
    EXPECT_EQ(full.exitCode, 5);
    EXPECT_EQ(full.err, "scard: The output could not be written: No space left on device.\n");
    const Outcome altered =
        run(QStringList{"verify"} + roots() + QStringList{write("altered.ddd", alteredFile())}, {},
            Output::FullDisk);
    EXPECT_EQ(altered.exitCode, 9);
    EXPECT_EQ(run(QStringList{"verify"} + roots() + QStringList{file}, {}, Output::ClosedPipe).exitCode, 0);
}

/// The line of `scard show` about signatures; empty when there is none.
std::string signaturesLine(const Outcome& outcome)
{
    for (const QString& line : QString::fromStdString(outcome.out).split('\n')) {
        if (line.startsWith("  Signatures "))
            return line.mid(13).trimmed().toStdString();
    }
    return {};
}

TEST_F(VerifyTest, ShowSaysWhetherTheSignaturesHoldWhenThatCanBeKnown)
{
    const Environment wide{{"COLUMNS", "200"}};
    const QString first = write("first.ddd", smallDownload("driver").file);
    const QString second = write("second.ddd", smallDownload("driverG2").file);
    const QString altered = write("altered.ddd", alteredFile());
    EXPECT_EQ(signaturesLine(run({"show", first}, wide)), "");
    EXPECT_EQ(
        signaturesLine(run(QStringList{"show"} + roots() + QStringList{first}, wide)),
        "genuine: 12 of 12 signatures of the first generation hold, up to the root keys that were given");
    EXPECT_EQ(
        signaturesLine(run({"show", second}, wide)),
        "root unknown: 14 of 26 signatures hold, 12 cannot be checked, a root key was not given");
    const Outcome outcome = run({"show", altered}, wide);
    EXPECT_EQ(signaturesLine(outcome), "altered: 13 of 26 signatures hold, 12 cannot be checked");
    EXPECT_EQ(outcome.exitCode, 0);
}

TEST_F(VerifyTest, ShowSaysItOnThePageAndInJson)
{
    const QString altered = write("altered.ddd", alteredFile());
    EXPECT_THAT(
        run(QStringList{"show", "--html", "-"} + roots() + QStringList{altered}).out,
        HasSubstr("<dd>altered: 25 of 26 signatures hold</dd>"));
    const Outcome json = run(QStringList{"show", "--json"} + roots() + QStringList{altered});
    EXPECT_EQ(schemaErrors("show", json.out), "");
    const QJsonObject shown = QJsonDocument::fromJson(QByteArray::fromStdString(json.out)).object();
    const QJsonObject download = shown["downloads"].toArray().first().toObject();
    EXPECT_EQ(download["verification"]["verdict"].toString(), "altered");
    EXPECT_EQ(download["verification"]["sentence"].toString(), "altered: 25 of 26 signatures hold");
}

} // namespace

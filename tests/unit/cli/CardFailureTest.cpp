#include "QtPrinters.h"

#include <cli/reader/CardFailure.h>
#include <cli/reader/PcscText.h>
#include <support/ErrorChain.h>

#include <winscard.h>

#include <utility>

namespace {

using namespace test;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

aux::Error failureOf(const Chain& entries)
{
    aux::Error failure;
    for (const Entry& entry : entries) {
        failure.append(aux::ErrorData(
            QString::fromStdString(entry.source), QString::fromStdString(entry.message), entry.id));
    }
    return failure;
}

FailureScene scene(const char* ef)
{
    FailureScene scene;
    scene.ef = QString::fromLatin1(ef);
    return scene;
}

Chain refusedPlaces(unsigned int status)
{
    return {
        lib("ScDataTransfer failed", status), lib("ScReadFile Failed ", status),
        lib("readFrom() ScReadFile() Failed: ID 506", status), lib("Failed reading card data")};
}

Chain brokenTransmit(long code)
{
    return {
        pcsc("ScDataTransfer SCardTransmit() Failed", code), lib("ScReadFile Failed "),
        lib("readFrom() ScReadFile() Failed: ID 506"), lib("Failed reading card data")};
}

struct Row
{
    Chain chain;
    ExitCode code;
    const char* message;
};

TEST(CardFailure, SaysWhatHappenedBeforeTheCardCouldBeRead)
{
    const char* const opening = "open: SCardConnect() Failed";
    const Row rows[] = {
        {{pcsc("init: ScardEstablishContext() Failed!", SCARD_E_NO_SERVICE)},
         exitNoReader,
         "The card service of this machine does not answer."},
        {{pcsc("init: ScardEstablishContext() Failed!", SCARD_W_SECURITY_VIOLATION)},
         exitNoReader,
         "The card service does not let this user in."},
        {{pcsc("init: SCardListReaders() Failed", SCARD_E_NO_READERS_AVAILABLE)},
         exitNoReader,
         "There is no card reader."},
        {{lib("init: No USB CCID reader found")}, exitNoReader, "There is no card reader."},
        {{pcsc("init: SCardListReaders() Failed", SCARD_E_NO_MEMORY)},
         exitNoReader,
         "The card service failed: Not enough memory."},
        {{pcsc(opening, SCARD_E_NO_SMARTCARD)}, exitNoCard, "There is no card in the reader."},
        {{pcsc(opening, SCARD_W_REMOVED_CARD)}, exitNoCard, "The card was taken out of the reader."},
        {{pcsc(opening, SCARD_E_SHARING_VIOLATION)},
         exitCardFailed,
         "Another program has the card to itself."},
        {{pcsc(opening, SCARD_W_UNRESPONSIVE_CARD)},
         exitCardFailed,
         "The card in the reader does not answer."},
        {{pcsc(opening, SCARD_W_UNPOWERED_CARD)}, exitCardFailed, "The card in the reader does not answer."},
        {{pcsc(opening, SCARD_E_PROTO_MISMATCH)},
         exitCardFailed,
         "Another program talks to the card with another protocol."},
        {{pcsc(opening, SCARD_E_UNKNOWN_READER)}, exitNoReader, "The card reader is gone."},
        {{pcsc(opening, SCARD_E_INVALID_HANDLE)}, exitNoReader, "The card service stopped."},
        {{pcsc(opening, SCARD_E_NO_MEMORY)},
         exitCardFailed,
         "The card could not be reached: Not enough memory."},
    };
    for (const Row& row : rows) {
        const CardFailure failure = cardFailureOf(failureOf(row.chain));
        EXPECT_EQ(failure.code, row.code) << row.message;
        EXPECT_EQ(failure.message, QString::fromLatin1(row.message));
        EXPECT_FALSE(failure.advice.isEmpty()) << row.message;
        EXPECT_EQ(failure.ef, QString());
        EXPECT_EQ(chain(failure.chain), row.chain);
    }
}

TEST(CardFailure, SaysAtWhichEfTheCardWasLost)
{
    const Row rows[] = {
        {brokenTransmit(SCARD_W_REMOVED_CARD), exitCardFailed,
         "The card was pulled or lost contact while EF_Places was read."},
        {brokenTransmit(SCARD_E_NO_SMARTCARD), exitCardFailed,
         "The card was pulled or lost contact while EF_Places was read."},
        {brokenTransmit(SCARD_E_NOT_TRANSACTED), exitCardFailed,
         "The card was pulled or lost contact while EF_Places was read."},
        {brokenTransmit(SCARD_W_RESET_CARD), exitCardFailed,
         "Another program reset the card while EF_Places was read."},
        {brokenTransmit(SCARD_E_PROTO_MISMATCH), exitCardFailed,
         "Another program talks to the card with another protocol."},
        {brokenTransmit(SCARD_E_NO_SERVICE), exitNoReader,
         "The card service stopped while EF_Places was read."},
        {brokenTransmit(SCARD_E_READER_UNAVAILABLE), exitNoReader, "The card reader is gone."},
        {brokenTransmit(SCARD_E_INSUFFICIENT_BUFFER), exitCardFailed,
         "The card could not be reached while EF_Places was read: Insufficient buffer."},
        {{lib("ScDataTransfer: answer without status word"), lib("ScReadFile Failed "),
          lib("readFrom() ScReadFile() Failed: ID 506"), lib("Failed reading card data")},
         exitCardFailed,
         "The card stopped answering while EF_Places was read."},
        {{lib("ScReadFile: Received data size does not match exptectation"),
          lib("readFrom() ScReadFile() Failed: ID 506"), lib("Failed reading card data")},
         exitCardFailed,
         "The card gave fewer bytes than it holds while EF_Places was read."},
    };
    for (const Row& row : rows) {
        const CardFailure failure = cardFailureOf(failureOf(row.chain), scene("EF_Places"));
        EXPECT_EQ(failure.code, row.code) << row.message;
        EXPECT_EQ(failure.message, QString::fromLatin1(row.message));
        EXPECT_EQ(failure.ef, "EF_Places");
    }
}

TEST(CardFailure, NamesWhatTheCardRefused)
{
    CardFailure failure = cardFailureOf(failureOf(refusedPlaces(0x6982)), scene("EF_Places"));
    EXPECT_EQ(failure.code, exitCardFailed);
    EXPECT_EQ(failure.message, "The card refused to give EF_Places (status 6982).");
    EXPECT_THAT(failure.advice.toStdString(), HasSubstr("rights"));

    failure = cardFailureOf(failureOf(refusedPlaces(0x6F00)), scene("EF_Places"));
    EXPECT_EQ(failure.message, "The card refused to give EF_Places (status 6F00).");
    EXPECT_THAT(failure.advice.toStdString(), HasSubstr("--verbose"));

    failure = cardFailureOf(
        failureOf(
            {lib("ScDataTransfer failed", 0x6A88), lib("ScComputeHashOfFile Failed ", 0x6A88),
             lib("readHash() ScComputeHashOfFile() Failed: ID520", 0x6A88), lib("Failed reading card data")}),
        scene("EF_Identification"));
    EXPECT_EQ(failure.message, "The card refused to sign EF_Identification (status 6A88).");
}

TEST(CardFailure, NamesACertificateByTheApplicationThatIsRead)
{
    const Chain refused = {
        lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By IDc100", 0x6A82),
        lib("readFrom() ScSelectFile() Failed: ID c100", 0x6A82), lib("Failed reading card data")};
    EXPECT_EQ(cardFailureOf(failureOf(refused), scene("EF_Card_Certificate")).ef, "EF_Card_Certificate");
    EXPECT_EQ(cardFailureOf(failureOf(refused), scene("EF_MA_Certificate")).ef, "EF_MA_Certificate");
}

TEST(CardFailure, ACardPulledInItsFirstApplicationIsNamedByTheEfThatWasReadThen)
{
    FailureScene pulled = scene("EF_Driver_Activity_Data");
    pulled.unreadEf = "EF_Driver_Activity_Data";
    const CardFailure failure = cardFailureOf(
        failureOf(
            {lib("read() Select DF_Tachograph failed"),
             pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_E_NOT_TRANSACTED),
             lib("ScSelectFile Failed: By NameSMRDT"), lib("Failed reading card data")}),
        pulled);
    EXPECT_EQ(failure.message, "The card was pulled or lost contact while EF_Driver_Activity_Data was read.");
}

TEST(CardFailure, AnotherKindOfCardIsNoTachographCard)
{
    const Chain rows[] = {
        {lib("ScDataTransfer failed", 0x6A82), lib("ScSelectFile Failed: By NameTACHO", 0x6A82),
         lib("read() Identify Card Generation failed", 0x6A82), lib("Failed at reading card information")},
        {lib("read() Unknown Card Type"), lib("Failed at reading card information")},
    };
    for (const Chain& row : rows) {
        const CardFailure failure = cardFailureOf(failureOf(row));
        EXPECT_EQ(failure.code, exitCardFailed);
        EXPECT_EQ(failure.message, "The card in the reader is not a tachograph card.");
    }
}

TEST(CardFailure, APulledCardIsNotTakenForAnotherKind)
{
    const CardFailure failure = cardFailureOf(failureOf(
        {pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_W_REMOVED_CARD),
         lib("ScSelectFile Failed: By NameTACHO"), lib("read() Identify Card Generation failed"),
         lib("Failed at reading card information")}));
    EXPECT_EQ(failure.message, "The card was pulled or lost contact.");
}

TEST(CardFailure, SaysWhyTheFileCouldNotBeWrittenAndWhatIsLeftOfIt)
{
    FailureScene unfinished = scene("EF_Places");
    unfinished.file = "/tmp/C_1.DDD";
    const std::pair<Chain, const char*> rows[] = {
        {{lib("writeDatasetToFile() write failed: No space left on device"),
          lib("Failed at saving card data to file")},
         "No space left on device"},
        {{lib("saveToFile() Failed"), lib("writeSignatureToFile() write failed: No space left on device"),
          lib("Failed at saving card data to file")},
         "No space left on device"},
        {{lib("saveToFile() sync failed: Input/output error"), lib("Failed at saving card data to file")},
         "Input/output error"},
        {{lib("saveToFile(): File not opened"), lib("Failed at saving card data to file")},
         "the file could not be made"},
    };
    for (const auto& [entries, reason] : rows) {
        const CardFailure failure = cardFailureOf(failureOf(entries), unfinished);
        EXPECT_EQ(failure.code, exitNotWritten);
        EXPECT_EQ(
            failure.message.toStdString(),
            std::string("The download could not be written to /tmp/: ") + reason + ".");
        EXPECT_THAT(
            failure.advice.toStdString(),
            testing::AllOf(
                HasSubstr("The card was not told"),
                HasSubstr("/tmp/C_1.DDD is not complete and must not be used.")));
        EXPECT_EQ(failure.ef, QString());
    }
}

TEST(CardFailure, SaysWhatItMeansThatTheCardCouldNotBeTold)
{
    const Chain refused = {
        lib("updateLastCardDownload() writeTo() Failed: ID 50e", 0x6581),
        lib("ScDataTransfer failed", 0x6581), lib("ScWriteFile Failed ", 0x6581),
        lib("writeTo() ScReadFile() Failed: ID 50e", 0x6581), lib("Failed at post download task")};
    FailureScene driver = scene("EF_Places");
    driver.type = scard::SCardMeta::DriverCard;
    CardFailure failure = cardFailureOf(failureOf(refused), driver);
    EXPECT_EQ(failure.code, exitNotStamped);
    EXPECT_EQ(
        failure.message,
        "The download is complete, but the card could not be told of it: the card refused to "
        "change EF_Card_Download (status 6581).");
    EXPECT_THAT(
        failure.advice.toStdString(), StartsWith("The card may still show the date of the download before."));

    driver.type = scard::SCardMeta::WorkshopCard;
    failure = cardFailureOf(failureOf(refused), driver);
    EXPECT_THAT(failure.advice.toStdString(), StartsWith("The card may still count the calibrations"));

    failure = cardFailureOf(
        failureOf(
            {lib("updateLastCardDownload() writeTo() Failed: ID 50e"),
             pcsc("ScDataTransfer SCardTransmit() Failed", SCARD_W_REMOVED_CARD), lib("ScWriteFile Failed "),
             lib("writeTo() ScReadFile() Failed: ID 50e"), lib("Failed at post download task")}),
        driver);
    EXPECT_EQ(failure.code, exitNotStamped);
    EXPECT_THAT(
        failure.message.toStdString(),
        EndsWith("the card was pulled or lost contact while EF_Card_Download was written."));
}

TEST(CardFailure, WhatNobodyKnowsIsToldInTheLibrarysWords)
{
    const CardFailure failure =
        cardFailureOf(failureOf({lib("something else"), lib("Failed reading card data")}));
    EXPECT_EQ(failure.code, exitCardFailed);
    EXPECT_EQ(failure.message, "The download failed: something else.");
    EXPECT_FALSE(failure.advice.isEmpty());
}

TEST(PcscText, IsACopy)
{
    const QString first = pcscText(SCARD_E_NO_SMARTCARD);
    EXPECT_NE(first, pcscText(SCARD_E_NO_SERVICE));
    EXPECT_EQ(first, pcscText(SCARD_E_NO_SMARTCARD));
}

} // namespace

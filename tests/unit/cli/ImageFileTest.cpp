#include <QtPrinters.h>

#include <cli/ImageFile.h>

#include <gtest/gtest.h>

namespace {

TEST(ImageFileTest, WalksFromRecordToRecord)
{
    const struct
    {
        const char* name;
        const char* bytes;
        std::vector<qint64> offsets;
        qint64 lastAvailable;
        qint64 trailing;
        bool isCut;
        int signatures;
    } rows[] = {
        {"nothing", "", {}, 0, 0, false, 0},
        {"a record", "0002000002aabb", {0}, 2, 0, false, 0},
        {"a record without data", "0002000000", {0}, 0, 0, false, 0},
        {"two records", "0002000001aa0501010001bb", {0, 6}, 1, 0, false, 1},
        {"a signature of no bytes", "0501010000", {0}, 0, 0, false, 0},
        {"signatures of both generations", "0501010001bb0501030001cc", {0, 6}, 1, 0, false, 2},
        {"a signature that is cut", "0501010002bb", {0}, 1, 0, true, 0},
        {"data that are cut", "0002000003aabb", {0}, 2, 0, true, 0},
        {"a header alone", "0002000001aa0501000005", {0, 6}, 0, 0, true, 0},
        {"a header that is cut", "0002000001aa05010000", {0}, 1, 4, true, 0},
        {"one byte", "00", {}, 0, 1, true, 0},
        {"the longest length", "000200ffff00", {0}, 1, 0, true, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const ImageFile file = imageFileOf(QByteArray::fromHex(row.bytes));
        std::vector<qint64> offsets;
        for (const ImageRecord& record : file.records)
            offsets.push_back(record.offset);
        EXPECT_EQ(offsets, row.offsets);
        if (!file.records.empty()) {
            EXPECT_EQ(file.records.back().available, row.lastAvailable);
            EXPECT_EQ(file.records.back().isWhole(), !row.isCut || row.trailing > 0);
        }
        EXPECT_EQ(file.trailing, row.trailing);
        EXPECT_EQ(file.isCut(), row.isCut);
        EXPECT_EQ(file.signatures(), row.signatures);
    }
}

TEST(ImageFileTest, TellsWhatARecordIs)
{
    const struct
    {
        const char* bytes;
        bool isSecond;
        bool isSignature;
        bool isKnown;
        const char* name;
    } rows[] = {
        {"c100000000", false, false, true, "EF_Card_Certificate"},
        {"c100010000", false, true, true, "EF_Card_Certificate"},
        {"c100020000", true, false, true, "EF_MA_Certificate"},
        {"c100030000", true, true, true, "EF_MA_Certificate"},
        {"0501040000", false, false, false, "EF_Application_Identification"},
        {"0501810000", false, false, false, "EF_Application_Identification"},
        {"c209000000", false, false, true, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bytes);
        const ImageRecord record = imageFileOf(QByteArray::fromHex(row.bytes)).records.at(0);
        EXPECT_EQ(record.isSecondGeneration(), row.isSecond);
        EXPECT_EQ(record.isSignature(), row.isSignature);
        EXPECT_EQ(record.hasKnownType(), row.isKnown);
        EXPECT_EQ(record.efName(), QString(row.name));
    }
}

TEST(ImageFileTest, HasTheHashThatOtherProgramsReckon)
{
    EXPECT_EQ(
        imageFileOf("abc").sha256(),
        QString("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"));
}

} // namespace

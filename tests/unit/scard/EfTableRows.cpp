#include "EfTableRows.h"

#include <gmock/gmock.h>

namespace test {

namespace {

using namespace scard::detail;

std::vector<EfRow> rowsReadAt(const EfTable& table, ReadAt when)
{
    std::vector<EfRow> rows;
    for (const EfRow& row : table.rows)
        if (row.readAt == when)
            rows.push_back(row);
    return rows;
}

} // namespace

void expectRows(const EfTable& table, const std::vector<ExpectedRow>& expectedRows)
{
    const std::vector<EfRow> rows = rowsReadAt(table, ReadAt::Download);
    ASSERT_EQ(rows.size(), expectedRows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const ExpectedRow& expected = expectedRows[i];
        SCOPED_TRACE(expected.name);
        EXPECT_EQ(rows[i].fid, expected.fid);
        EXPECT_STREQ(rows[i].name, expected.name);
        EXPECT_STREQ(rows[i].failureText, expected.failureText);
        EXPECT_EQ(rows[i].signing == Signing::Signed, expected.isSigned);
        EXPECT_EQ(rows[i].inImage == InImage::Optional, expected.optionalInImage);
        EXPECT_EQ(rows[i].onCards == OnCards::Version2_2, expected.version2);
        ExpectedPieces pieces;
        for (const Piece& piece : rows[i].pieces)
            pieces.push_back({piece.recordSize, piece.count.number, piece.groups});
        EXPECT_EQ(pieces, expected.pieces);
    }
}

void expectIdentificationRows(const EfTable& table)
{
    const std::vector<EfRow> rows = rowsReadAt(table, ReadAt::Identification);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].fid, 0x0002);
    EXPECT_STREQ(rows[0].name, "EF_ICC");
    EXPECT_EQ(rows[1].fid, 0x0005);
    EXPECT_STREQ(rows[1].name, "EF_IC");
    const std::size_t sizes[] = {25, 8};
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(rows[i].signing, Signing::Unsigned);
        EXPECT_EQ(rows[i].onCards, OnCards::All);
        ASSERT_EQ(rows[i].pieces.size(), 1U);
        EXPECT_EQ(rows[i].pieces[0].recordSize, sizes[i]);
        EXPECT_EQ(rows[i].pieces[0].count.number, 1U);
        EXPECT_EQ(rows[i].pieces[0].groups, 1);
    }
}

void expectEverySavedEfIsReadOnce(const EfTable& table)
{
    std::vector<unsigned short> read;
    for (const EfRow& row : table.rows)
        read.push_back(row.fid);
    EXPECT_THAT(table.saveOrder, testing::UnorderedElementsAreArray(read));
}

std::vector<unsigned short> certificatesOf(const EfTable& table)
{
    std::vector<unsigned short> fids;
    for (const EfRow& row : table.rows)
        for (const Piece& piece : row.pieces)
            if (piece.count.from == RecordCount::From::CertificateHeader)
                fids.push_back(row.fid);
    return fids;
}

} // namespace test

#include <QtPrinters.h>

#include <cli/report/Table.h>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace {

using namespace report;

struct Lorry
{
    QString plate;
    std::optional<int> doors;
    scard::Nation nation;
};

const Fields<Lorry> lorryFields{
    field<Lorry>("plate", "Plate", [](const Lorry& lorry) { return lorry.plate; }),
    field<Lorry>(
        "doors", "Doors", [](const Lorry& lorry) { return lorry.doors; }, Weight::Detail),
    field<Lorry>("nation", "Nation", [](const Lorry& lorry) { return lorry.nation; }),
};

TEST(TableTest, KnowsTheKindOfAColumnAlsoWithoutRows)
{
    const Table table = makeTable("lorries", "Lorries", std::vector<Lorry>(), lorryFields, "doors", "nation");
    ASSERT_EQ(table.columns.size(), 3u);
    EXPECT_EQ(table.columns[0].kind, Kind::Text);
    EXPECT_EQ(table.columns[1].kind, Kind::Number);
    EXPECT_EQ(table.columns[1].weight, Weight::Detail);
    EXPECT_EQ(table.columns[2].kind, Kind::Country);
    EXPECT_EQ(table.begin, 1);
    EXPECT_EQ(table.end, 2);
    EXPECT_TRUE(table.rows.empty());
    const Table timeless = makeTable("lorries", "Lorries", std::vector<Lorry>(), lorryFields, "", "");
    EXPECT_EQ(timeless.begin, -1);
    EXPECT_EQ(timeless.end, -1);
}

TEST(TableTest, MakesARowOfEachItem)
{
    const std::vector<Lorry> lorries{{"A", 2, {13, "D"}}, {"B", std::nullopt, {}}};
    const Table table = makeTable("lorries", "Lorries", lorries, lorryFields, "", "");
    const std::vector<std::vector<Value>> rows{
        {QString("A"), qint64{2}, Country{{13, "D"}}}, {QString("B"), Value(), Country{}}};
    EXPECT_EQ(table.rows, rows);
}

TEST(TableTest, MakesNoFactsOfAnEfThatIsMissing)
{
    const FactGroup none = makeFacts("lorry", "Lorry", std::optional<Lorry>(), lorryFields);
    EXPECT_EQ(none.key, QString("lorry"));
    EXPECT_TRUE(none.facts.empty());
    const FactGroup one = makeFacts("lorry", "Lorry", std::optional<Lorry>(Lorry{"A", {}, {}}), lorryFields);
    ASSERT_EQ(one.facts.size(), 3u);
    EXPECT_EQ(one.facts[0].value, Value(QString("A")));
}

} // namespace

#include <scardverify/detail/DataObjects.h>

#include <gtest/gtest.h>

namespace {

using scard::verify::detail::DataObjects;

QByteArray bytes(const char* hex)
{
    return QByteArray::fromHex(hex);
}

const QByteArray tag("\x5F\x37", 2);

TEST(DataObjectsTest, TakesOneObjectAfterTheOther)
{
    DataObjects objects(bytes("5F37 02 AABB 42 00"));
    EXPECT_EQ(objects.take(tag), bytes("AABB"));
    EXPECT_EQ(objects.taken(), bytes("5F3702AABB"));
    EXPECT_FALSE(objects.atEnd());
    const auto empty = objects.take("\x42");
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->isEmpty());
    EXPECT_TRUE(objects.atEnd());
}

TEST(DataObjectsTest, TakesNothingOfAnotherTag)
{
    DataObjects objects(bytes("5F38 01 AA"));
    EXPECT_FALSE(objects.take(tag));
    EXPECT_TRUE(objects.taken().isEmpty());
    EXPECT_TRUE(objects.take(bytes("5F38")));
}

TEST(DataObjectsTest, TakesNothingOfAnotherLength)
{
    DataObjects objects(bytes("5F37 02 AABB"));
    EXPECT_FALSE(objects.take(tag, 1));
    EXPECT_FALSE(objects.take(tag, 3));
    EXPECT_TRUE(objects.taken().isEmpty());
    EXPECT_EQ(objects.take(tag, 2), bytes("AABB"));
}

TEST(DataObjectsTest, ReadsLengthsOfOneTwoAndThreeBytes)
{
    const struct
    {
        const char* length;
        int value;
    } rows[] = {{"00", 0},      {"7F", 0x7F},      {"8180", 0x80},
                {"81FF", 0xFF}, {"820100", 0x100}, {"82FFFF", 0xFFFF}};
    for (const auto& row : rows) {
        DataObjects objects(tag + bytes(row.length) + QByteArray(row.value, 'x'));
        const auto value = objects.take(tag);
        ASSERT_TRUE(value) << row.length;
        EXPECT_EQ(value->size(), row.value);
        EXPECT_TRUE(objects.atEnd());
    }
}

TEST(DataObjectsTest, TakesNoLengthThatIsNotInItsShortestForm)
{
    for (const char* length : {"8100", "817F", "820000", "8200FF", "80", "83000001", "84FFFFFFFF", "FF"}) {
        DataObjects objects(tag + bytes(length) + QByteArray(0x200, 'x'));
        EXPECT_FALSE(objects.take(tag)) << length;
    }
}

TEST(DataObjectsTest, TakesNothingBeyondTheEnd)
{
    for (const char* object :
         {"", "5F", "5F37", "5F37 01", "5F37 02 AA", "5F37 81", "5F37 82", "5F37 8201", "5F37 8180 AA",
          "5F37 820100 AA"}) {
        DataObjects objects(bytes(object));
        EXPECT_FALSE(objects.take(tag)) << object;
        EXPECT_TRUE(objects.taken().isEmpty());
    }
}

TEST(DataObjectsTest, IsAtTheEndOfNothing)
{
    EXPECT_TRUE(DataObjects(QByteArray()).atEnd());
}

} // namespace

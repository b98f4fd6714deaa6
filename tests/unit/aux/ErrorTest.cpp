#include "QtPrinters.h"

#include <aux/Error.h>
#include <support/DebugStream.h>
#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QDebug>
#include <QMetaType>
#include <QVariant>

#include <iterator>
#include <limits>
#include <utility>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using test::chain;
using test::Entry;

aux::ErrorData entry(const char* source, const char* message, unsigned int id)
{
    return aux::ErrorData(QString::fromLatin1(source), QString::fromLatin1(message), id);
}

aux::Error error(const char* source, const char* message, unsigned int id)
{
    aux::Error failure;
    failure.append(entry(source, message, id));
    return failure;
}

TEST(ErrorData, KeepsSourceMessageAndId)
{
    const aux::ErrorData data(QStringLiteral("SCard"), QStringLiteral("open: \u00FC"), 0x6A82);

    EXPECT_EQ(data.getSource(), QStringLiteral("SCard"));
    EXPECT_EQ(data.getMessage(), QStringLiteral("open: \u00FC"));
    EXPECT_EQ(data.getId(), 27266U);
}

TEST(ErrorData, IdHasThirtyTwoBits)
{
    EXPECT_EQ(entry("a", "b", std::numeric_limits<std::uint32_t>::max()).getId(), 0xFFFFFFFFU);
}

TEST(Error, WithoutEntriesIsSuccess)
{
    const aux::Error success;

    EXPECT_TRUE(success.isEmpty());
    EXPECT_EQ(success.begin(), success.end());
}

TEST(Error, WithAnEntryIsNoSuccess)
{
    const aux::Error failure = error("libscard", "", 0);

    EXPECT_FALSE(failure.isEmpty());
    EXPECT_EQ(std::distance(failure.begin(), failure.end()), 1);
}

TEST(Error, BeginLeadsToTheFirstEntry)
{
    aux::Error failure = error("libscard", "inner", 27266);
    failure.append(entry("libscard", "outer", 3));

    EXPECT_EQ(failure.begin()->getId(), 27266U);
}

TEST(Error, AppendedEntriesKeepTheirOrder)
{
    aux::Error failure = error("SCard", "first", 1);
    failure.append(entry("libscard", "second", 2));
    failure.append(entry("libscard", "third", 3));

    EXPECT_THAT(
        chain(failure),
        ElementsAre(
            Entry{"SCard", "first", 1}, Entry{"libscard", "second", 2}, Entry{"libscard", "third", 3}));
}

TEST(Error, ChainingPutsTheEntriesOfTheStepBehindTheInnerOnes)
{
    aux::Error inner = error("SCard", "transmit", 0);
    inner.append(entry("libscard", "select", 1));
    aux::Error step = error("libscard", "read", 2);
    step.append(entry("libscard", "download", 3));

    const aux::Error& result = inner << std::move(step);

    EXPECT_EQ(&result, &inner);
    EXPECT_THAT(
        chain(inner), ElementsAre(
                          Entry{"SCard", "transmit", 0}, Entry{"libscard", "select", 1},
                          Entry{"libscard", "read", 2}, Entry{"libscard", "download", 3}));
}

TEST(Error, ChainingWorksOverSeveralSteps)
{
    aux::Error failure = error("libscard", "a", 1);

    failure << error("libscard", "b", 2);
    failure << error("libscard", "c", 3);

    EXPECT_THAT(
        chain(failure),
        ElementsAre(Entry{"libscard", "a", 1}, Entry{"libscard", "b", 2}, Entry{"libscard", "c", 3}));
}

TEST(Error, ChainingWithSuccessOnEitherSideAddsNothing)
{
    aux::Error failure = error("libscard", "a", 1);
    failure << aux::Error();
    EXPECT_THAT(chain(failure), ElementsAre(Entry{"libscard", "a", 1}));

    aux::Error success;
    success << error("libscard", "b", 2);
    EXPECT_THAT(chain(success), ElementsAre(Entry{"libscard", "b", 2}));

    aux::Error both;
    both << aux::Error();
    EXPECT_TRUE(both.isEmpty());
}

TEST(Error, ACopyIsIndependentOfItsSource)
{
    aux::Error source = error("libscard", "a", 1);
    const aux::Error copy(source);
    aux::Error assigned;
    assigned = source;

    source << error("libscard", "b", 2);

    EXPECT_THAT(chain(copy), ElementsAre(Entry{"libscard", "a", 1}));
    EXPECT_THAT(chain(assigned), ElementsAre(Entry{"libscard", "a", 1}));
}

TEST(Error, MovesWithAllItsEntries)
{
    aux::Error source = error("libscard", "a", 1);
    source.append(entry("SCard", "b", 2));

    aux::Error moved(std::move(source));
    EXPECT_THAT(chain(moved), ElementsAre(Entry{"libscard", "a", 1}, Entry{"SCard", "b", 2}));

    aux::Error assigned = error("libscard", "overwritten", 9);
    assigned = std::move(moved);
    EXPECT_THAT(chain(assigned), ElementsAre(Entry{"libscard", "a", 1}, Entry{"SCard", "b", 2}));
}

TEST(Error, AssigningSuccessForgetsTheEntries)
{
    aux::Error failure = error("libscard", "a", 1);

    failure = aux::Error();

    EXPECT_THAT(chain(failure), IsEmpty());
}

TEST(Error, TheDebugStreamGetsEveryEntryInOrder)
{
    aux::Error failure = error("SCard", "transmit \"failed\"", 0);
    failure.append(entry("libscard", "select", 0x6A82));

    qDebug() << failure;

    EXPECT_EQ(
        test::DebugStream::lines(),
        QStringList(QStringLiteral("SCard: transmit \"failed\" (0) | libscard: select (6a82)")));
}

TEST(Error, WritingToTheDebugStreamLeavesItsSettingsAlone)
{
    qDebug() << error("libscard", "a", 1) << QStringLiteral("quoted") << 7;

    EXPECT_EQ(test::DebugStream::lines(), QStringList(QStringLiteral("libscard: a (1) \"quoted\" 7")));
}

TEST(Error, TravelsInAVariantUnderItsFullName)
{
    EXPECT_STREQ(QMetaType::typeName(qMetaTypeId<aux::Error>()), "aux::Error");

    const QVariant variant = QVariant::fromValue(error("libscard", "a", 1));

    EXPECT_THAT(chain(variant.value<aux::Error>()), ElementsAre(Entry{"libscard", "a", 1}));
}

} // namespace

#pragma once

#include "CardOnImage.h"

#include <support/ErrorChain.h>

#include <gmock/gmock.h>

#include <QDateTime>

namespace test {

/// The seconds of a time, which must be local; -1 for a null one.
inline qint64 secondsOf(const QDateTime& time)
{
    if (time.isNull())
        return -1;
    EXPECT_EQ(time.timeSpec(), Qt::LocalTime);
    return time.toSecsSinceEpoch();
}

/// A card object that has read its image.
template <typename Card>
class ReadCard : public CardOnImage<Card>
{
  public:
    explicit ReadCard(const Image& image) : CardOnImage<Card>(image)
    {
        EXPECT_THAT(chain(this->read()), testing::IsEmpty());
    }
};

} // namespace test

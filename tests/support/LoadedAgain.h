#pragma once

#include "ErrorChain.h"
#include "Host.h"

#include <scard/SCardReader.h>

#include <QFile>

#include <gmock/gmock.h>

#include <memory>

namespace test {

/// The card object made, and read, from the file that a download has written; null if it is of another class.
template <typename Card>
std::shared_ptr<Card> loadedAgain(const Download& result)
{
    QFile file(result.path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    scard::SCardGeneric image(file, result.card->getDownloadTimestamp(), scard::RegionDDD);
    EXPECT_THAT(chain(image.readCardInfo()), testing::IsEmpty());
    auto card = std::dynamic_pointer_cast<Card>(scard::SCardReader().generateSpecific(image));
    EXPECT_TRUE(card);
    if (card) {
        EXPECT_THAT(chain(card->read()), testing::IsEmpty());
    }
    return card;
}

} // namespace test

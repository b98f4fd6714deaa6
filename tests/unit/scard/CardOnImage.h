#pragma once

#include "Image.h"

#include <scard/SCardGeneric.h>

#include <QDateTime>

namespace test {

/// A card object on an image, made the way a host makes it: from the identified generic object.
template <typename Card>
class CardOnImage : public Card
{
  public:
    explicit CardOnImage(const Image& image) : CardOnImage(ImageFile(image)) {}

  private:
    /// What can be found out of an image; a damaged one need not be identified.
    struct Generic : scard::SCardGeneric
    {
        explicit Generic(QFile& file)
            : SCardGeneric(file, QDateTime(QDate(2024, 3, 5), QTime(14, 7), Qt::UTC), scard::RegionDDD)
        {
            readCardInfo();
        }
    };

    explicit CardOnImage(ImageFile&& file) : Card(Generic(file)) {}
};

} // namespace test

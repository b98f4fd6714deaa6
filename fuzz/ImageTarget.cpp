// The bytes of a download: the file constructor, what the card is, every class's read(), every question.
#include "InputFile.h"
#include "Target.h"

#include <scard/SCardReader.h>
#include <support/Answers.h>

#include <QDate>
#include <QDateTime>
#include <QFile>

#include <typeinfo>

namespace {

using namespace scard;

/// What a host may ask of a day that the card does not have.
void askOfDaysThatAreNotThere(const SCardDriverG1& driver)
{
    for (const QDate& date :
         {QDate(), QDate(1, 1, 1), QDate(1969, 12, 31), QDate(2024, 3, 5), QDate(2106, 2, 7),
          QDate(9999, 12, 31)}) {
        int minutes[5];
        driver.getDayStatistics(date, minutes[0], minutes[1], minutes[2], minutes[3], minutes[4]);
        driver.getRemainingDrivingTimeOfDay(date);
        driver.getRemainingDrivingTimeOfWeek(date);
        driver.getRemainingExtendedDrivingTimeOfWeek(date);
        driver.getRemainingReducedRestTimeOfWeek(date);
        driver.getTimeToNextBreak(date);
    }
}

void ask(SCardGeneric& card)
{
    unsigned int serial = 0;
    card.getCardSerial(serial);
    card.getFilename();
    if (auto* driver = dynamic_cast<SCardDriverG1*>(&card)) {
        test::identityOf(*driver);
        test::answersOf(*driver);
        askOfDaysThatAreNotThere(*driver);
    }
    if (auto* driver = dynamic_cast<SCardDriverG2*>(&card))
        test::secondAnswersOf(*driver);
    if (auto* workshop = dynamic_cast<SCardWorkshopG1*>(&card))
        test::answersOf(*workshop);
    if (auto* workshop = dynamic_cast<SCardWorkshopG2*>(&card))
        test::secondAnswersOf(*workshop);
    if (auto* company = dynamic_cast<SCardCompanyG1*>(&card))
        test::answersOf(*company);
    if (auto* company = dynamic_cast<SCardCompanyG2*>(&card))
        test::secondAnswersOf(*company);
}

void readAndAsk(SCardGeneric& card)
{
    card.calcDataToRead();
    const bool isRead = card.read().isEmpty();
    ask(card);
    const bool isDone = card.postDownloadTasks().isEmpty();
    fuzz::expect(isDone || !isRead, "a file that could be read has no card to be told");
    QFile nowhere;
    const bool isSaved = card.saveToFile(nowhere).isEmpty();
    fuzz::expect(!isSaved || typeid(card) == typeid(SCardGeneric), "what comes from a file is not saved");
}

template <typename Card>
void readAs(const SCardGeneric& identified)
{
    Card card(identified);
    readAndAsk(card);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::discardDebugStream();
    fuzz::InputFile image(data, size);
    SCardGeneric identified(image.opened(), QDateTime(QDate(2024, 3, 5), QTime(14, 7), Qt::UTC), RegionDDD);
    const bool known = identified.readCardInfo().isEmpty();
    fuzz::expect(identified.isLoadedFromZubo(), "what was built from a file says so");
    if (known) {
        readAndAsk(*SCardReader().generateSpecific(identified));
        return 0;
    }
    // Nobody knows what it is; each class must cope with it.
    readAs<SCardGeneric>(identified);
    readAs<SCardDriverG1>(identified);
    readAs<SCardDriverG2>(identified);
    readAs<SCardWorkshopG1>(identified);
    readAs<SCardWorkshopG2>(identified);
    readAs<SCardCompanyG1>(identified);
    readAs<SCardCompanyG2>(identified);
    return 0;
}

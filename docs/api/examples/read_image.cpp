// Shows what a driver's download says, of both generations: read_image FILE
#include <scard/SCardDriverG2.h>
#include <scard/SCardReader.h>

#include <QTextStream>

QTextStream out(stdout);

//! [lists]
template <typename Days, typename Vehicles, typename Events>
void show(const char* generation, const Days& days, const Vehicles& vehicles, const Events& events)
{
    int driving = 0;
    for (const auto& day : days)
        driving += day.driving;
    out << generation << ": " << days.size() << " days, " << driving << " minutes of driving" << Qt::endl;
    if (!days.empty())
        out << "  last day " << days.back().date.toUTC().date().toString(Qt::ISODate) << Qt::endl;
    for (const auto& vehicle : vehicles)
        out << "  vehicle " << vehicle.registration << " from " << vehicle.odometerBegin << " to "
            << vehicle.odometerEnd << " km" << Qt::endl;
    for (const auto& event : events)
        out << "  event " << event.type << " in " << event.registration << Qt::endl;
}
//! [lists]

int main(int argc, char* argv[])
{
    //! [load]
    QFile file(argc > 1 ? argv[1] : "");
    file.open(QIODevice::ReadOnly);
    scard::SCardGeneric image(file, QDateTime::currentDateTimeUtc(), scard::RegionDDD);
    aux::Error failure = image.readCardInfo(); // kind and generation of the card
    const auto card = scard::SCardReader().generateSpecific(image);
    const auto driver = std::dynamic_pointer_cast<scard::SCardDriverG1>(card);
    if (failure.isEmpty() && driver)
        failure = driver->read();
    if (!driver || !failure.isEmpty()) {
        out << "No driver card's download" << Qt::endl;
        return 1;
    }
    //! [load]
    out << "Holder: " << driver->getCardHolderName() << Qt::endl;
    show("First generation", driver->getActivities(), driver->getVehiclesUsed(), driver->getEvents());
    //! [second]
    if (const auto second = std::dynamic_pointer_cast<scard::SCardDriverG2>(driver)) {
        show(
            "Second generation", second->getActivitiesG2(), second->getVehiclesUsedG2(),
            second->getEventsG2());
        for (const scard::BorderCrossing& crossing : second->getBorderCrossings())
            out << "  from " << crossing.left.alpha << " to " << crossing.entered.alpha << Qt::endl;
    }
    //! [second]
    return 0;
}

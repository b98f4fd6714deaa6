#pragma once

#include <simulator/CardDescription.h>
#include <simulator/DriverContentsG2.h>

#include <QByteArray>

#include <cstdint>
#include <vector>

// Downloads of simulated cards, made without a reader, and ways to change them.

namespace test {

/// A card and the file that its download makes.
struct CardFile
{
    const char* name;
    sim::CardDescription card;
    QByteArray file;

    /// The second application's records have the first generation's type: so the library writes them for
    /// company cards, and reads them as one card of the first generation.
    bool isOneApplication = false;
};

/// Each kind of card, with as many records as it has in real life.
const std::vector<CardFile>& realDownloads();

/// Each kind of card with few records.
const std::vector<CardFile>& smallDownloads();
const CardFile& smallDownload(const char* name);

/// The download of a driver card.
QByteArray driverFile(const sim::DriverParameters& parameters = {});
QByteArray driverFileG2(const sim::DriverParametersG2& parameters = {});

/// The download of @p card, a driver card.
QByteArray downloadOf(const sim::CardDescription& card);

/// The content of an EF of a card, to be changed.
sim::Bytes& contentOf(sim::CardDescription& card, std::size_t application, unsigned int fid);
const sim::Bytes& contentOf(const sim::ApplicationDescription& application, unsigned int fid);

/// Puts @p text at @p offset of @p bytes.
void put(QByteArray& bytes, int offset, const QByteArray& text);

/// One day of EF_Driver_Activity_Data: its date as TimeReal, and its changes (sim::activity, minute).
struct ActivityDay
{
    std::uint32_t date;
    std::vector<std::uint16_t> changes;
};

/// EF_Driver_Activity_Data with these days, in a buffer of @p length bytes.
sim::Bytes activityFile(const std::vector<ActivityDay>& days, std::size_t length);

} // namespace test

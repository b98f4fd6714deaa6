#pragma once

#include <aux/Error.h>

#include <QCoreApplication>
#include <QString>

/// What there is to say of the first reader.
enum class ReaderState
{
    NotKnown, ///< nobody has looked yet
    NoService,
    NoReader,
    NoCard,
    CardIn,
    Reading,
    CardDone, ///< the card that was read, well or not, is still in
};

/// A failure as a person needs it; empty when there is none.
struct Failure
{
    QString sentence;
    QString details; ///< the library's own words, an entry on each line

    bool isEmpty() const { return sentence.isEmpty(); }

    Q_DECLARE_TR_FUNCTIONS(Failure)
};

/// What a download's @p error means.
/// @param behind what the reader was found like when the download had failed: it tells a pulled card from one
///        that refuses, which an error's text does in another way with each reader
Failure downloadFailure(const aux::Error& error, ReaderState behind);

/// A company card that is pulled towards its end: the download counts as complete all the same.
Failure incompleteFile();

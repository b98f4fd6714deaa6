#pragma once

#include "CardContents.h"
#include "Failure.h"

#include <QMetaType>
#include <QString>

#include <memory>

/// All that the window shows: the worker sends a new one whenever something has changed.
struct CardStatus
{
    ReaderState reader = ReaderState::NotKnown;

    // Of the download that runs, or was the last.
    int percent = 0;
    QString type;
    QString holder;
    QString file;                                 ///< path of the complete file
    std::shared_ptr<const CardContents> contents; ///< null without a complete download
    Failure failure;
};

Q_DECLARE_METATYPE(CardStatus)

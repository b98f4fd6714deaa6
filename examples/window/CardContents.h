#pragma once

#include "Day.h"

#include <scard/SCardGeneric.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <vector>

/// A list of the card as a person reads it.
struct TextTable
{
    QString name; ///< for programs
    QString title;
    QStringList columns;
    std::vector<QStringList> rows; ///< newest first
};

/// What is on a card, as plain values: they may go from thread to thread, the card's object stays in its own.
struct CardContents
{
    QString note; ///< when there is nothing to list
    bool hasDays = false;
    std::vector<Day> days; ///< newest first
    std::vector<TextTable> tables;

    Q_DECLARE_TR_FUNCTIONS(CardContents)
};

CardContents contentsOf(scard::SCardGeneric& card);

/// "Driver card, second generation".
QString cardName(const scard::SCardGeneric& card);

QString cardTypeName(scard::SCardMeta::Type type);

/// In UTC, as the card has it; empty when the card does not know it.
QString timeText(const QDateTime& time);

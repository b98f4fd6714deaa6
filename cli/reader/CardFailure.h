#pragma once

#include "../ExitCode.h"

#include <aux/Error.h>
#include <scard/SCardMeta.h>

#include <QString>

#include <optional>

/// A failure of the library as a person needs it.
struct CardFailure
{
    ExitCode code = exitCardFailed;
    QString message; ///< one sentence: what happened
    QString advice;  ///< what to do next
    QString ef;      ///< the EF at which it happened; empty when it was none
    aux::Error chain;
};

/// What is known beside the failure itself.
struct FailureScene
{
    QString ef;                                 ///< the EF that was read last
    QString unreadEf;                           ///< the first EF that could not be read; empty when all could
    QString file;                               ///< the file in "/tmp/", whole or not; empty when not known
    std::optional<scard::SCardMeta::Type> type; ///< of the card; empty before it was told
};

/// What the failure @p chain of the library means.
CardFailure cardFailureOf(const aux::Error& chain, const FailureScene& scene = {});

/// A failure of this program's own.
CardFailure ownFailure(ExitCode code, const QString& message, const QString& advice);

/// Prints it on standard error; its entries too when --verbose was given.
void printCardFailure(const CardFailure& failure);

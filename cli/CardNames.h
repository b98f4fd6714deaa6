#pragma once

#include <scard/SCardMeta.h>

#include <QString>

/// "driver card"; "card of type 9" for a type that is none.
QString cardTypeName(scard::SCardMeta::Type type);

/// "first generation", "second generation" or "second generation, version 2.2".
QString generationName(bool secondGeneration, bool version2);

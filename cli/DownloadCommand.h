#pragma once

#include <scard/SCardMeta.h>

/// `scard download`: one card from the first reader into a file under "/tmp/".
/// @param waitSeconds how long to wait for a card to be put in; 0: it has to be there
/// @return the program's exit code: 0 for a complete download, 1 for a failed one
int downloadCard(scard::FilenameRegion region, int waitSeconds);

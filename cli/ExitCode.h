#pragma once

// How the program ends. The numbers are documented in the manual page; scripts rely on them.
enum ExitCode
{
    exitDone = 0,
    exitUsage = 1,       ///< wrong arguments, or an argument names no file that can be read
    exitNoReader = 2,    ///< no PC/SC service, or no reader
    exitNoCard = 3,      ///< no card in the reader
    exitCardFailed = 4,  ///< the card refused, was pulled, or is no tachograph card
    exitNotWritten = 5,  ///< a file or the output could not be written
    exitNotStamped = 6,  ///< the download is complete, but the card could not be told
    exitDamagedFile = 7, ///< the file is damaged; what could be shown was shown
    exitUnproven = 8,    ///< the download is not proven to be genuine
    exitAltered = 9,     ///< the download is not what a card wrote
};

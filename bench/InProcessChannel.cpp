#include "Channel.h"

#include <standin/Pcsc.h>
#include <support/PcscPresence.h>

namespace bench {

void putIntoReader(sim::Card& card)
{
    standin::Pcsc& pcsc = standin::Pcsc::instance();
    pcsc.reset();
    pcsc.setRecording(false);
    pcsc.addReader(test::virtualReaderName);
    pcsc.insert(test::virtualReaderName, card);
}

void takeOut()
{
    standin::Pcsc::instance().reset();
}

const char* channelName()
{
    return "in-process";
}

} // namespace bench

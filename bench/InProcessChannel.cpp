#include "Channel.h"

#include <standin/Pcsc.h>

namespace bench {

void putIntoReader(sim::Card& card)
{
    standin::Pcsc& pcsc = standin::Pcsc::instance();
    pcsc.reset();
    pcsc.setRecording(false);
    pcsc.addReader("Simulated reader 00 00");
    pcsc.insert("Simulated reader 00 00", card);
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

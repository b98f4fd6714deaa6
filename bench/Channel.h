#pragma once

#include <simulator/Card.h>

// How the commands of a benchmark reach the simulated card; one of two sources implements it.

namespace bench {

/// Puts @p card into the first reader and waits until PC/SC sees it.
void putIntoReader(sim::Card& card);

/// Takes it out again.
void takeOut();

/// What the channel is, for the benchmark's name.
const char* channelName();

} // namespace bench

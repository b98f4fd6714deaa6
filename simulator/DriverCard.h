// Whole driver cards: contents, access rights and keys put together.
#pragma once

#include "DriverContents.h"
#include "DriverContentsG2.h"

namespace sim {

/// A first-generation driver card. Throws as makeDriverContents() does.
CardDescription makeDriverCardG1(const DriverParameters& parameters = {});

/// A second-generation driver card: the first-generation application, then the second. The odd READ BINARY
/// works. Throws as makeDriverContentsG2() does.
CardDescription makeDriverCardG2(const DriverParametersG2& parameters = {});

} // namespace sim

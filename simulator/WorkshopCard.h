// Whole workshop cards: contents, access rights and keys put together.
#pragma once

#include "WorkshopContents.h"

namespace sim {

/// A first-generation workshop card. Throws as makeWorkshopContents() does.
CardDescription makeWorkshopCardG1(const WorkshopParameters& parameters = {});

/// A second-generation workshop card: the first-generation application, then the second. The odd READ BINARY
/// works. Throws as makeWorkshopContentsG2() does.
CardDescription makeWorkshopCardG2(const WorkshopParametersG2& parameters = {});

} // namespace sim

#pragma once

#include "CardContents.h"

#include <scard/SCardDriverG1.h>

CardContents driverContents(scard::SCardDriverG1& driver);

#pragma once

#include <QString>

/// What an EventFaultType means (Annex 1C, Appendix 1).
QString eventName(int type);

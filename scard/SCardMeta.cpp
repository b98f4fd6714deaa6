#include <scard/SCardMeta.h>

// The meta-object of the namespace lives in this translation unit.
#include "moc_SCardMeta.cpp"

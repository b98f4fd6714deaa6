#include "Target.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace fuzz {

void expect(bool kept, const char* promise)
{
    if (kept)
        return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

void discardDebugStream()
{
    static const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    static_cast<void>(before);
}

} // namespace fuzz

#include "ErrorChain.h"

#include <winscard.h>

#include <utility>

namespace test {

void PrintTo(const Entry& entry, std::ostream* stream)
{
    *stream << "{\"" << entry.source << "\", \"" << entry.message << "\", 0x" << std::hex << entry.id
            << std::dec << '}';
}

Chain chain(const aux::Error& failure)
{
    Chain entries;
    for (const aux::ErrorData& entry : failure)
        entries.push_back({entry.getSource().toStdString(), entry.getMessage().toStdString(), entry.getId()});
    return entries;
}

Entry lib(std::string message, unsigned int id)
{
    return {"libscard", std::move(message), id};
}

Entry pcsc(const std::string& message, long code)
{
    return {"SCard", message + ": " + pcsc_stringify_error(code), 0};
}

} // namespace test

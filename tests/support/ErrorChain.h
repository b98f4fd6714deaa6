#pragma once

#include <aux/Error.h>

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <vector>

namespace test {

/// One entry of an error, as tests write it down.
struct Entry
{
    std::string source;
    std::string message;
    unsigned int id = 0;

    bool operator==(const Entry& other) const
    {
        return source == other.source && message == other.message && id == other.id;
    }
};

void PrintTo(const Entry& entry, std::ostream* stream);

using Chain = std::vector<Entry>;

/// The entries in their order.
Chain chain(const aux::Error& failure);

/// An entry of the library's own.
Entry lib(std::string message, unsigned int id = 0);

/// An entry of a failed PC/SC call: the message, ": " and PC/SC's text for the code.
Entry pcsc(const std::string& message, long code);

/// The entries that a call throws; empty when it throws nothing.
template <typename Call>
Chain thrown(Call call)
{
    try {
        call();
    } catch (const aux::Error& failure) {
        return chain(failure);
    }
    return {};
}

} // namespace test

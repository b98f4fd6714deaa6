// From contents to a card: the EFs of an application as rows of a table.
#pragma once

#include "CardDescription.h"

#include <type_traits>
#include <utility>

namespace sim {

/// T=0 then T=1, TA1 = 95, IFSC 254, historical bytes "SIMTC".
inline const Bytes DefaultAtr = {0x3B, 0x95, 0x95, 0x80, 0x31, 0xFE, 0x45,
                                 0x53, 0x49, 0x4D, 0x54, 0x43, 0x4A};

// Short names for the columns of the tables.
namespace rights {
constexpr Access Always = Access::Always;
constexpr Access Never = Access::Never;
constexpr Access Secure = Access::SecureMessaging;
constexpr Access Authenticated = Access::ExternalAuthentication;
} // namespace rights

/// An EF: where its content comes from and who may do what.
template <typename Contents>
struct FileRow
{
    std::uint16_t fid;
    Bytes Contents::*content;
    Access read;
    Access update;
    bool hashable;
    std::uint8_t sfid = 0;
    Access select = Access::Always;
};

/// An EF without content is not on the card. `contents` may be of a type derived from that of the rows.
template <typename Contents, std::size_t Rows>
void addFiles(
    std::vector<FileDescription>& to, const FileRow<Contents> (&rows)[Rows],
    const std::common_type_t<Contents>& contents)
{
    for (const FileRow<Contents>& row : rows) {
        const Bytes& content = contents.*row.content;
        if (content.empty()) {
            continue;
        }
        FileDescription file;
        file.fid = row.fid;
        file.sfid = row.sfid;
        file.content = content;
        file.select = row.select;
        file.read = row.read;
        file.update = row.update;
        file.hashable = row.hashable;
        to.push_back(std::move(file));
    }
}

} // namespace sim

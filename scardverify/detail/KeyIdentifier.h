#pragma once

namespace scard::verify::detail {

/// Bytes of what certificates name a key by (Annex 1C, Appendix 1, KeyIdentifier).
constexpr int keyIdentifierLength = 8;

} // namespace scard::verify::detail

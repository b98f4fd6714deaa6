#pragma once

namespace scard::detail {

// EFs that more than their row of a table knows (Appendix 2).
constexpr unsigned short fidIcc = 0x0002;
constexpr unsigned short fidIc = 0x0005;
constexpr unsigned short fidApplicationIdentification = 0x0501;
constexpr unsigned short fidCardDownload = 0x050E;
constexpr unsigned short fidIdentification = 0x0520;

} // namespace scard::detail

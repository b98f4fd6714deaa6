#pragma once

// EFs that libscard does not read and other programs may (Annex 1C, Appendix 2).

namespace scard::verify::detail {

constexpr unsigned short fidExtendedLength = 0x0006;
constexpr unsigned short fidSensorInstallationData = 0x050B;
constexpr unsigned short fidControllerActivityData = 0x050C;
constexpr unsigned short fidVuConfiguration = 0x0540;
constexpr unsigned short fidDir = 0x2F00;
constexpr unsigned short fidAtrInfo = 0x2F01;

} // namespace scard::verify::detail

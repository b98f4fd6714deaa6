#pragma once

#include <string>

namespace scard::detail {

/// Names by which the two card applications are selected (Appendix 2): FF and five letters.
constexpr std::size_t applicationNameLength = 6;

inline const std::string& firstGenerationApplication()
{
    static const std::string name("\xFFTACHO", applicationNameLength);
    return name;
}

inline const std::string& secondGenerationApplication()
{
    static const std::string name("\xFFSMRDT", applicationNameLength);
    return name;
}

} // namespace scard::detail

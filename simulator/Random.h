// Random choices that are the same on every machine: the distributions of the standard library are not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace sim {

class Random
{
  public:
    /// `stream` separates what is chosen for different purposes from the same seed: more events must not
    /// change the driver's name.
    Random(std::uint32_t seed, std::uint32_t stream)
    {
        std::seed_seq sequence{seed, stream};
        m_engine.seed(sequence);
    }

    /// 0..limit-1, all equally likely; `limit` is at least 1.
    std::uint32_t below(std::uint32_t limit)
    {
        const std::uint32_t reject = (0U - limit) % limit;
        std::uint32_t value = next();
        while (value < reject) {
            value = next();
        }
        return value % limit;
    }

    /// first..last, both included.
    int between(int first, int last)
    {
        return first + static_cast<int>(below(static_cast<std::uint32_t>(last - first) + 1));
    }

    bool chance(int percent) { return between(0, 99) < percent; }

    std::uint32_t next() { return static_cast<std::uint32_t>(m_engine()); }

    std::string digits(std::size_t count)
    {
        std::string text;
        while (text.size() < count) {
            text += static_cast<char>('0' + below(10));
        }
        return text;
    }

    template <typename T>
    const T& pick(const std::vector<T>& from)
    {
        return from[below(static_cast<std::uint32_t>(from.size()))];
    }

  private:
    std::mt19937 m_engine;
};

} // namespace sim

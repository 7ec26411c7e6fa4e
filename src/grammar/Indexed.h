/// \file
/// Indexed: a std::vector indexed by int, the type of every symbol code, rule,
/// item, state and transition number, so that tables read as the algorithms
/// write them (rulesOf[a]) without a cast to size_t at every index.
#pragma once

#include <cassert>
#include <cstddef>
#include <utility>
#include <vector>

/// A std::vector whose operator[] takes an int and whose size() is an int.
/// It is a std::vector otherwise, and binds to a std::vector reference, so
/// code that speaks size_t (a caller's std::size_t index converts to int)
/// still reads it. Debug builds check every index.
template <typename T>
class Indexed : public std::vector<T> {
public:
    using Base = std::vector<T>;
    using Base::Base;

    Indexed() = default;
    Indexed(const Base& other)
        : Base(other)
    {
    }
    Indexed(Base&& other) noexcept
        : Base(std::move(other))
    {
    }

    T& operator[](int i)
    {
        assert(i >= 0 && i < size());
        return Base::operator[](static_cast<std::size_t>(i));
    }
    const T& operator[](int i) const
    {
        assert(i >= 0 && i < size());
        return Base::operator[](static_cast<std::size_t>(i));
    }
    int size() const { return static_cast<int>(Base::size()); }
};

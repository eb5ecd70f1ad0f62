/// @file
/// What check.py has to cope with in a header; Sample.cpp defines it with and without faults.
#pragma once

#include "vansys/Export.h"

#include <functional>
#include <string>

namespace sample
{

VANSYS_API void Free(std::string const &text, std::size_t size);
VANSYS_API extern int s_count;
void Unmarked();

template <class Value>
Value Template(Value value)
{
    return value;
}

class VANSYS_API Base
{
public:
    class Nested;
    static double const s_unit;
    static constexpr int Constant = 2;

    explicit Base(int value) : m_name(std::to_string(value)) {}
    Base(Base const &) = default;
    virtual ~Base();
    virtual int Pure() const = 0;
    void Overload(int) const;
    void Overload(long) const;
    friend bool operator==(Base const &, Base const &) { return true; }

private:
    std::string m_name;
};

class VANSYS_API Base::Nested final : public Base
{
public:
    using Base::Base;
    int Pure() const override;
};

class Partly
{
public:
    VANSYS_API Partly();
    void Internal();
};

} // namespace sample

template <>
struct VANSYS_API std::hash<sample::Partly>
{
    std::size_t operator()(sample::Partly const &partly) const noexcept;
};

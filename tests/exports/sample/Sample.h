/// @file
/// What check.sh has to cope with in a header; self_test.sh builds it with and without faults.
#pragma once

#include "vansys/Export.h"

#include <functional>
#include <string>
#include <vector>

namespace sample
{

VANSYS_API void Free(std::vector<int> values = {1, 2}, char const *text = "}; f(", char separator = ';');
VANSYS_API std::function<void(int, int)> Callback(void (*callback)(int, int));
VANSYS_API extern int s_count;
void Unmarked();

template <class First, class Second>
First Template(First first, Second)
{
    return first;
}

struct VANSYS_API Point
{
    static constexpr int Dimensions = 2;
    static double const s_unit;
    double x = 0;
    double y{0};
};

class VANSYS_API Base
{
public:
    class Nested;

    explicit Base(int value) noexcept : m_value{value}, m_names() {}
    Base(Base const &) = default;
    [[deprecated("use the other")]] Base(int, int, char const *name);
    virtual ~Base();

    virtual int Pure() const = 0;
    int Overload(int) const;
    int Overload(int);
    int Overload(long);
    std::string const &Overload() const noexcept;

    bool operator()(int) const;
    bool operator<(Base const &other) const;
    int &operator[](int);
    explicit operator std::vector<std::string>() const;

    int Inline() const
    {
        if (m_value)
        {
            return m_value;
        }
        return 0;
    }

    friend bool operator==(Base const &, Base const &) { return true; }

private:
    struct Hidden
    {
        int value;
    };

    int m_value;
    std::vector<std::string> m_names;
};

class VANSYS_API Base::Nested final : public Base
{
public:
    using Base::Base;
    ~Nested() override;
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
struct VANSYS_API std::hash<sample::Point>
{
    std::size_t operator()(sample::Point const &point) const noexcept;
};

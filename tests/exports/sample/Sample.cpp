// Defines what Sample.h declares. Each macro plants one fault.

#include "Sample.h"

namespace sample
{

#if !defined(MISSING_FUNCTION)
void Free(std::vector<int>, char const *, char) {}
#endif

std::function<void(int, int)> Callback(void (*callback)(int, int))
{
    return callback;
}

#if !defined(MISSING_VARIABLE)
int s_count = Template(Point::Dimensions, 0);
#endif

double const Point::s_unit = 1;

void Unmarked() {}

Base::Base(int value, int, char const *name) : m_value(value), m_names{name} {}

Base::~Base() = default;

int Base::Overload(int) const
{
    return 1;
}

int Base::Overload(int)
{
    return 2;
}

#if !defined(MISSING_OVERLOAD)
int Base::Overload(long)
{
    return 3;
}
#endif

std::string const &Base::Overload() const noexcept
{
    return m_names.front();
}

bool Base::operator()(int) const
{
    return true;
}

bool Base::operator<(Base const &other) const
{
    return m_value < other.m_value;
}

int &Base::operator[](int)
{
    return m_value;
}

Base::operator std::vector<std::string>() const
{
    return m_names;
}

Base::Nested::~Nested() = default;

int Base::Nested::Pure() const
{
    return Inline();
}

Partly::Partly()
{
    Internal();
}

void Partly::Internal() {}

#if defined(LEAKED_FUNCTION)
VANSYS_API void NotInAnyHeader() {}
#endif

#if defined(LEAKED_OVERLOAD)
VANSYS_API void Free(int, int, int) {}
#endif

#if defined(LEAKED_CLASS)
struct VANSYS_API NotInAnyHeader
{
    virtual ~NotInAnyHeader();
};
NotInAnyHeader::~NotInAnyHeader() = default;
#endif

} // namespace sample

std::size_t std::hash<sample::Point>::operator()(sample::Point const &) const noexcept
{
    return 0;
}

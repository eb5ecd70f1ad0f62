// Defines what Sample.h declares. Each macro plants one fault; what is missing then is used nowhere.

#include "Sample.h"

namespace sample
{

#if !defined(MISSING_FUNCTION)
void Free(std::string const &, std::size_t) {}
#endif

#if !defined(MISSING_VARIABLE)
int s_count = Template(Base::Constant);
#endif

double const Base::s_unit = 1;

void Unmarked() {}

Base::~Base() = default;
void Base::Overload(int) const {}
#if !defined(MISSING_OVERLOAD)
void Base::Overload(long) const {}
#endif

int Base::Nested::Pure() const
{
    return 0;
}

Partly::Partly()
{
    Internal();
}

void Partly::Internal() {}

#if defined(LEAKED_OVERLOAD)
VANSYS_API void Free(std::string const &, int) {}
#endif

#if defined(LEAKED_CLASS)
struct VANSYS_API NotInAnyHeader
{
    virtual ~NotInAnyHeader();
};
NotInAnyHeader::~NotInAnyHeader() = default;
#endif

} // namespace sample

std::size_t std::hash<sample::Partly>::operator()(sample::Partly const &) const noexcept
{
    return 0;
}

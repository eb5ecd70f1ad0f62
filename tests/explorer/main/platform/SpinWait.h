/// @file
/// In place of the library's header: one look. Further ones would find what a look at another moment finds.
#pragma once

namespace vansys::detail
{

template <class Condition>
bool SpinUntil(Condition condition) noexcept
{
    return condition();
}

template <class Attempt>
bool SpinWhileItPays(Attempt attempt)
{
    return attempt();
}

} // namespace vansys::detail

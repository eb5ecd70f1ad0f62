// The check of the guard word, which only builds with assertions have. This file has them on its own.
#undef NDEBUG

#include "vansys/ReferenceCount.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace
{

class Checked : public RefCntObjectNonVirtualBase<Checked>
{
public:
    Checked() = default;
    ~Checked() = default;
};

} // namespace

TEST(GuardWordDeathTest, OverwrittenObjectIsNotDestroyed)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // starts the program anew: a fork would miss its threads
    auto *const object = new Checked;
    object->AddReference();
    auto *const guard = reinterpret_cast<unsigned char *>(object) + sizeof(std::int32_t);
    *guard ^= 1;
    EXPECT_DEATH(object->RemoveReference(), "not a live counted object");
    *guard ^= 1;
    EXPECT_EQ(object->RemoveReference(), 0);
}

#include "main/diagnostics/UndecoratedName.h"

#include <gtest/gtest.h>

using namespace vansys::detail;

TEST(UndecoratedName, IsTheNameWithScopes)
{
    struct Row
    {
        char const *symbol;
        char const *name;
    };
    constexpr Row Rows[] = {
        {"main", "main"},
        {"f", "f"}, // decorated, this would be the type float
        {"_Znot_a_name", "_Znot_a_name"},
        {"_ZN4core5ParseEi", "core::Parse"},
        {"_ZNK4core6Parser3GetEv", "core::Parser::Get"},
        {"_ZN12_GLOBAL__N_11fEPFvvE", "(anonymous namespace)::f"},
        {"_Z3addIiEDTplfp_fp_ET_", "add<int>"}, // decltype of a sum is its result
        {"_ZStlsISt11char_traitsIcEERSt13basic_ostreamIcT_ES5_c",
         "std::operator<< <std::char_traits<char> >"},
        {"_ZN1AclEi", "A::operator()"},
        {"_ZN1AixEi", "A::operator[]"},
        {"_ZN1AltERKS_", "A::operator<"},
        {"_ZN1AeqIiEEbT_", "A::operator==<int>"},
        {"_ZN1AptEv", "A::operator->"},
        {"_ZNK1AcvbEv", "A::operator bool"},
        {"_ZN1AcvNSt7__cxx114listIiSaIiEEEEv", "A::operator std::__cxx11::list<int, std::allocator<int> >"},
        {"_Znwm", "operator new"},
        {"_ZZ1fIiEvT_ENKUlvE_clEv", "f<int>(int)::{lambda()#1}::operator()"},
        {"_ZN1fEi.cold", "f"},
        {"_ZThn8_N1A1fEv", "A::f"},
    };
    for (Row const &row : Rows)
        EXPECT_EQ(NameOnly(Undecorate(row.symbol)), row.name)
            << row.symbol << " is " << Undecorate(row.symbol);

    // Whatever the text is, the search ends.
    for (char const *text : {"", "(", ")", "operator", "operator(", "decltype", "decltype(", ">->", "a b)("})
        EXPECT_LE(NameOnly(text).size(), std::string(text).size());
}

// A host program that sees the library only as it is installed. Each line of main asks for something that
// lives in the shared library; the exceptions show that both sides agree on their types.

#include <vansys/vansys.h>

#include <cstdio>
#include <string>

namespace
{

int s_failures = 0;

void Check(bool isTrue, char const *expectation)
{
    if (isTrue)
        return;
    std::fprintf(stderr, "not so: %s\n", expectation);
    ++s_failures;
}

template <class Exception, class Action>
bool Throws(Action action)
{
    try
    {
        action();
    }
    catch (Exception const &)
    {
        return true;
    }
    return false;
}

} // namespace

int main()
{
    TStringCore text("gr\xC3\xBC\xC3\x9F dich, ");
    text += u"a text that is longer than the string object";
    Check(text.toStdString() == "gr\xC3\xBC\xC3\x9F dich, a text that is longer than the string object",
          "text comes back as it went in");
    Check(Throws<TStringCore::Exception>([] { TStringCore(u"abc").at(4); }),
          "a failure of the string is caught by its type");
    Check(Throws<VantrelException>([] { ThrowLogicException("consumer", 1, "false"); }),
          "a failed assertion is caught by its type");
    VantrelOutOfMemoryException const stored;
    VantrelException const &base = stored;
    Check(Throws<VantrelOutOfMemoryException>([&base] { base.Throw(); }),
          "a stored exception is thrown again with its own type");

    unsigned char const message[] = {'a', 'b', 'c'};
    Check(sha2().GetHash(sha2::SHA256, message, sizeof message) ==
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad",
          "SHA-256 of the standard's example");
    Check(THash(message, sizeof message) == THash32(message, sizeof message, 0xdeadbeef),
          "both forms of the hash agree");
    auto const swedish = VanICU::ICULocale::createFromName("sv");
    Check(swedish && swedish->getDisplayLanguage(*swedish) == u"svenska", "ICU finds its data");
    Check(TMath::MulDiv(7, 3, 2) == 11, "the quotient is rounded");
    return s_failures == 0 ? 0 : 1;
}

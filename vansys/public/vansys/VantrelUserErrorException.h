/// @file
/// VantrelUserErrorException: a failure that the user, not the program, brought about.
#pragma once

#include "vansys/VantrelException.h"

/// Says that what the user asked for cannot be done; its message is meant to be shown to the user.
///
/// It does not override `Clone` and `Throw`: once it has been stored and re-thrown, a user error is a plain
/// `VantrelException`. Handle it before it crosses a thread.
class VANSYS_API VantrelUserErrorException : public VantrelException
{
public:
    VantrelUserErrorException(VantrelUserErrorException const &) = default;

    explicit VantrelUserErrorException(TFormatStringCore const &message);
    explicit VantrelUserErrorException(TStringCore const &message);

    /// The same from a literal, wide or UTF-8: always plain text.
    explicit VantrelUserErrorException(char const *message) : VantrelException(message) {}

    explicit VantrelUserErrorException(TCodeUnit const *message) : VantrelException(message) {}

    explicit VantrelUserErrorException(TWideTwin const *message) : VantrelException(message) {}

    VantrelUserErrorException &operator=(VantrelUserErrorException const &) = default;
    ~VantrelUserErrorException() override;
};

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
    using VantrelException::VantrelException;

    VantrelUserErrorException(VantrelUserErrorException const &) = default;
    VantrelUserErrorException &operator=(VantrelUserErrorException const &) = default;
    ~VantrelUserErrorException() override;
};

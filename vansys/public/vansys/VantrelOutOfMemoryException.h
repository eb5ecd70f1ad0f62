/// @file
/// VantrelOutOfMemoryException: memory that the host asked for could not be had.
#pragma once

#include "vansys/VantrelException.h"

/// Says that memory ran out. Cloned and re-thrown as its own type.
class VANSYS_API VantrelOutOfMemoryException : public VantrelException
{
public:
    /// With the message "Out of memory".
    VantrelOutOfMemoryException();

    VantrelOutOfMemoryException(VantrelOutOfMemoryException const &) = default;

    explicit VantrelOutOfMemoryException(std::list<TStringCore> const &messages);
    explicit VantrelOutOfMemoryException(TStringCore const &message);

    VantrelOutOfMemoryException &operator=(VantrelOutOfMemoryException const &) = default;
    ~VantrelOutOfMemoryException() override;

    VantrelOutOfMemoryException *Clone() const override;
    [[noreturn]] void Throw() const override;
};

/// @file
/// VantrelOutOfMemoryException: memory that the host asked for could not be had.
#pragma once

#include "vansys/VantrelExceptionOf.h"

/// Says that memory ran out. Cloned and re-thrown as its own type.
class VANSYS_API VantrelOutOfMemoryException : public VantrelExceptionOf<VantrelOutOfMemoryException>
{
public:
    using VantrelExceptionOf::VantrelExceptionOf;

    /// With the message "Out of memory".
    VantrelOutOfMemoryException();

    VantrelOutOfMemoryException(VantrelOutOfMemoryException const &) = default;
    VantrelOutOfMemoryException &operator=(VantrelOutOfMemoryException const &) = default;
    ~VantrelOutOfMemoryException() override;
};

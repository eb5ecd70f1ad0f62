#include "vansys/ReferenceCount.h"

// Out of line, so that the library has the one table of virtual functions.
RefCntObject::~RefCntObject() = default;

// Every member compiles, also those that nothing calls yet.
template class RefCntObjectNonVirtualBase<RefCntObject>;

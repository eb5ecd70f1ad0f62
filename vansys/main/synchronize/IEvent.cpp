#include "vansys/IEvent.h"

// Here, so that there is one table of its virtual functions, and one description of its type, for everybody.
IEvent::~IEvent() = default;

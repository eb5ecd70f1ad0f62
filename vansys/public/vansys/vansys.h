/// @file
/// Everything that vansys exports. Including the header of each class that is used costs less.
#pragma once

#include "vansys/AssertHooks.h"
#include "vansys/Export.h"
#include "vansys/TCodeUnit.h"
#include "vansys/THash.h"
#include "vansys/TMath.h"
#include "vansys/TStringCore.h"
#include "vansys/ThrowLogicException.h"
#include "vansys/VantrelException.h"
#include "vansys/VantrelOutOfMemoryException.h"
#include "vansys/VantrelUserErrorException.h"
#include "vansys/sha2.h"

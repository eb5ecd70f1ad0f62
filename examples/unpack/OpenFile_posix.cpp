#include "OpenFile.h"

// A path of text alone could as well be opened by `path.ForHost().toStdString()`. The bytes are right for
// every name.
std::FILE *unpack::OpenForReading(TPathCore const &path)
{
    return std::fopen(path.toNativeBytes().c_str(), "rb");
}

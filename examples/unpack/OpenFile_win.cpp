#include "OpenFile.h"

std::FILE *unpack::OpenForReading(TPathCore const &path)
{
    return _wfopen(path.ForHost().constData(), L"rb");
}

#include "main/diagnostics/DebugHelp_win.h"
#include "main/platform/Handle.h"
#include "vansys/TStackWalker.h"

int TStackWalker::WriteCrashDump(TProcessHandle process, unsigned processId, TCodeUnit const *fileName,
                                 CrashDumpType type)
{
    // Where there is no file, it is the writer that fails.
    vansys::detail::Handle const file(CreateFileW(fileName, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                  nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    auto const lock = vansys::detail::LockDebugHelp();
    return MiniDumpWriteDump(process, processId, file.Get(), static_cast<MINIDUMP_TYPE>(type), nullptr,
                             nullptr, nullptr);
}

int TStackWalker::WriteCrashDump(TProcessHandle process, unsigned processId, TWideTwin const *fileName,
                                 CrashDumpType type)
{
    return WriteCrashDump(process, processId, reinterpret_cast<TCodeUnit const *>(fileName), type);
}

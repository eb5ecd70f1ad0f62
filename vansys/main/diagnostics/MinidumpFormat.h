/// @file
/// The records of a minidump file: little-endian, without gaps, at the offsets that `Location`s give.
#pragma once

#include <cstdint>

namespace vansys::detail::minidump
{

#pragma pack(push, 4)

/// Where something lies in the file.
struct Location
{
    std::uint32_t size;
    std::uint32_t offset;
};

enum class StreamType : std::uint32_t
{
    ThreadList = 3,
    ModuleList = 4,
    MemoryList = 5,
    Exception = 6,
    SystemInfo = 7,
    MiscInfo = 15,
    // Files of /proc, as they are; the numbers are those that the debuggers know them by.
    LinuxStatus = 0x47670004,
    LinuxAuxiliaryVector = 0x47670008,
    LinuxMaps = 0x47670009,
};

struct Header
{
    std::uint32_t signature; ///< "MDMP"
    std::uint32_t version;
    std::uint32_t streamCount;
    std::uint32_t directoryOffset;
    std::uint32_t checksum;
    std::uint32_t time; ///< seconds since 1970
    std::uint64_t flags;
};

struct Directory
{
    StreamType type;
    Location location;
};

struct Memory
{
    std::uint64_t start;
    Location location;
};

struct Thread
{
    std::uint32_t id;
    std::uint32_t suspendCount;
    std::uint32_t priorityClass;
    std::uint32_t priority;
    std::uint64_t environmentBlock;
    Memory stack;
    Location context;
};

struct Module
{
    std::uint64_t base;
    std::uint32_t size;
    std::uint32_t checksum;
    std::uint32_t time;
    std::uint32_t nameOffset; ///< a length in bytes, UTF-16, and a zero
    std::uint32_t version[13];
    Location identity; ///< a signature of four bytes, and what it says
    Location miscellaneous;
    std::uint64_t reserved[2];
};

struct Exception
{
    std::uint32_t threadId;
    std::uint32_t padding;
    std::uint32_t code; ///< on Linux, the number of the signal
    std::uint32_t flags;
    std::uint64_t nested;
    std::uint64_t address;
    std::uint32_t parameterCount;
    std::uint32_t padding2;
    std::uint64_t parameters[15];
    Location context;
};

struct SystemInfo
{
    std::uint16_t architecture;
    std::uint16_t processorLevel;
    std::uint16_t processorRevision;
    std::uint8_t processorCount;
    std::uint8_t productType;
    std::uint32_t majorVersion;
    std::uint32_t minorVersion;
    std::uint32_t buildNumber;
    std::uint32_t platform;
    std::uint32_t versionTextOffset;
    std::uint16_t suite;
    std::uint16_t reserved;
    std::uint32_t vendor[3];
    std::uint32_t versionInformation;
    std::uint32_t featureInformation;
    std::uint32_t extendedFeatures;
};

struct MiscInfo
{
    std::uint32_t size;
    std::uint32_t flags;
    std::uint32_t processId;
    std::uint32_t createTime;
    std::uint32_t userTime;
    std::uint32_t kernelTime;
};

/// The registers of a thread on x86-64.
struct Context
{
    std::uint64_t homes[6];
    std::uint32_t flags;
    std::uint32_t mxcsr;
    std::uint16_t cs, ds, es, fs, gs, ss;
    std::uint32_t eflags;
    std::uint64_t debugRegisters[6];
    std::uint64_t rax, rcx, rdx, rbx, rsp, rbp, rsi, rdi, r8, r9, r10, r11, r12, r13, r14, r15, rip;
    unsigned char floating[512]; ///< as FXSAVE writes them
    std::uint64_t vectorRegisters[52];
    std::uint64_t vectorControl;
    std::uint64_t debugControl[5];
};

#pragma pack(pop)

static_assert(sizeof(Header) == 32 && sizeof(Directory) == 12 && sizeof(Memory) == 16 &&
                  sizeof(Thread) == 48 && sizeof(Module) == 108 && sizeof(Exception) == 168 &&
                  sizeof(SystemInfo) == 56 && sizeof(MiscInfo) == 24 && sizeof(Context) == 1232,
              "the sizes of the records are part of the format");

inline constexpr std::uint32_t Signature = 0x504D444D;        // "MDMP"
inline constexpr std::uint32_t Version = 0xA793;              //
inline constexpr std::uint32_t BuildIdSignature = 0x4270454C; // "LEpB": a build id of an ELF file follows
inline constexpr std::uint16_t ArchitectureAmd64 = 9;         //
inline constexpr std::uint32_t PlatformLinux = 0x8201;        //
inline constexpr std::uint32_t MiscInfoHasProcessId = 1;      //
inline constexpr std::uint32_t ContextFull = 0x10000F;        // control, integer, segment, floating point
inline constexpr std::uint32_t ExceptionNone = 0xFFFFFFFF;    // the dump of a living process was asked for

} // namespace vansys::detail::minidump

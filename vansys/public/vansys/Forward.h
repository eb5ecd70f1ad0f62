/// @file
/// Declares the classes of the library, and those of its enumerations that can be declared, without defining
/// them. For headers that only name them, in pointers, references and declarations of functions.
#pragma once

class IEvent;
class PathElements;
class RefCntObject;
class TAutoResetEvent;
class TCancelEvent;
class TCapturedStack;
class TCountdownEvent;
class TCrashHandler;
class TEvent;
class TFormatStringCore;
class TPathCore;
class TReadWriteLock;
class TRecursiveMutex;
class TScanStringCore;
class TSemaphore;
class TSemaphoreScope;
class TStackWalker;
class TStackWalkerBase;
class TStackWalkerCollector;
class TStringCore;
class TTerminateHandler;
class VantrelException;
class VantrelOutOfMemoryException;
class VantrelUserErrorException;
class sha2;
struct PathEqualExact;
struct PathHashExact;
struct PathLess;
struct RefCntPtrHash;

enum class CrashDumpType : int;

template <class T>
class RefCntObjectNonVirtualBase;

template <class T, class Counted = RefCntObject>
class RefCntPtr;

template <int ArgumentCount = -1>
class TFormatLiteral;

template <class Derived, class Base = VantrelException>
class VantrelExceptionOf;

namespace vansys
{

class NumberFunctions;
class StringFunctions;
class Text;

} // namespace vansys

namespace VanICU
{

class ICULocalUCharsetDetectorPointer;
class ICULocale;
class ICUString;
struct ICUParseError;
struct UCharIterator;

enum ICUBreakIteratorType : int;
enum ICUColAttribute : int;
enum ICUColAttributeValue : int;
enum ICUCollationResult : int;
enum ICUErrorCode : int;
enum ICULocDataLocaleType : int;
enum ICUNormalization2Mode : int;
enum ICUNormalizationCheckResult : int;
enum ICUNumberFormatStyle : int;
enum ICUNumberFormatSymbol : int;
enum ICUNumberFormatTextAttribute : int;
enum ICUProperty : int;
enum ICUTransDirection : int;

enum class ICUCalendarDateField : int;
enum class ICUDayOfWeek : int;
enum class ICUEStyle : int;
enum class ICUNumberSymbolId : int;
enum class ICUSymbolContext : int;
enum class ICUSymbolWidth : int;

// Handles, which are defined nowhere: see ICUTypes.h.
struct ICUBreakIterator;
struct ICUCharsetDetector;
struct ICUCharsetMatch;
struct ICUConverter;
struct ICUEnumeration;
struct ICUNormalizer2;
struct ICUNumberFormat;
struct ICURegularExpression;
struct ICUStringSearch;
struct ICUText;
struct ICU_Collator;
struct UCaseMap;

} // namespace VanICU

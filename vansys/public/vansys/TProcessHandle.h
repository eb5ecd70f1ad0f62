/// @file
/// TProcessHandle: what names a process to the functions that look at one.
#pragma once

/// A process: null is none, all bits set (`TProcessHandle(-1)`) is the calling process. Any other value is,
/// on Windows, a `HANDLE`, and on Linux a file descriptor of a process (a pidfd), which is at least 3.
///
/// It is a plain value: who opened the process closes it.
using TProcessHandle = void *;

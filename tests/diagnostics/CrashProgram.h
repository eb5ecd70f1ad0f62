/// @file
/// What the program that crashes does on one system only.
#pragma once

#include "vansys/TCrashHandler.h"

#include <span>
#include <string_view>

struct CrashKind
{
    std::string_view name;
    void (*crash)();
};

/// Those that this system has in addition.
std::span<CrashKind const> SystemCrashKinds();

/// What comes before the handler is installed.
void PrepareSystem();

/// An option that other systems do not have. Before the handler is installed.
void ApplySystemOption(std::string_view name, TCrashHandler::Options &options);

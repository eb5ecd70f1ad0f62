/// @file
/// What goes wrong with single files, told on standard error.
#pragma once

#include "Progress.h"

#include <vansys/VantrelException.h>

#include <string_view>

namespace treehash
{

/// Prints messages past the progress bar.
class Report
{
public:
    explicit Report(Progress &progress) : m_progress(progress) {}

    /// Prints "treehash: name: message" with the messages of the exception, the outermost context first.
    void Failure(std::string_view name, VantrelException const &exception);

    bool HasFailures() const { return m_hasFailures; }

private:
    Progress &m_progress;
    bool m_hasFailures = false;
};

} // namespace treehash

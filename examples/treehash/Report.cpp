#include "Report.h"

#include "Manifest.h"

#include <cstdio>
#include <string>

namespace treehash
{

void Report::Failure(std::string_view name, VantrelException const &exception)
{
    m_hasFailures = true;
    std::string line = "treehash: " + EscapedName(name);
    auto const &messages = exception.GetMessages();
    for (auto message = messages.rbegin(); message != messages.rend(); ++message)
        line += ": " + message->toStdString();
    m_progress.Hide();
    std::fputs((line + "\n").c_str(), stderr);
}

} // namespace treehash

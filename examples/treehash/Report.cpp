#include "Report.h"

#include "Manifest.h"
#include "Platform.h"

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
    WriteMessage(line + "\n");
}

} // namespace treehash

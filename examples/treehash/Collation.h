/// @file
/// The order in which people look names up.
#pragma once

#include "Walk.h"

#include <string>
#include <vector>

namespace treehash
{

/// Sorts the files by their names as readers of the locale ("sv", "de@collation=phonebook") expect; the empty
/// locale is that of the user. Names that are equal to them are sorted byte by byte. A locale without rules
/// of its own has those of its language, or the common ones. Throws a `VantrelException` when there are no
/// rules to be had.
void SortByCollation(std::vector<FoundFile> &files, std::string const &locale);

} // namespace treehash

# Reads tools/layers.txt, for the scripts that compare the library with it; sourced after common.sh. What it finds
# wrong goes to the script's own function `report`.
# shellcheck shell=bash

layers=tools/layers.txt
declare -A rank_of

# Fills `rank_of` for the files of the library. Each of them matches exactly one pattern, and each pattern a file.
# To be called in the root.
read_ranks()
{
    local rank pattern index file
    local -a ranks=() patterns=() matches
    local -A is_used
    while read -r rank pattern; do
        case $rank in
        '' | '#'*) continue ;;
        *[!0-9]*) die "$layers: not a rank: $rank" ;;
        esac
        ranks+=("$rank")
        patterns+=("$pattern")
    done <"$layers"

    while IFS= read -r file; do
        matches=()
        for index in "${!patterns[@]}"; do
            # The right side is a pattern, and meant as one.
            # shellcheck disable=SC2053
            if [[ $file == ${patterns[index]} ]]; then
                matches+=("${patterns[index]}")
                rank_of[$file]=${ranks[index]}
                is_used[${patterns[index]}]=yes
            fi
        done
        ((${#matches[@]} == 1)) ||
            report "$file: matches ${#matches[@]} patterns of $layers, not one: ${matches[*]-}"
    done < <(project_files 'vansys/public/' 'vansys/main/' ':!*CMakeLists.txt')
    ((${#rank_of[@]})) || die "the library has no files"
    for pattern in "${patterns[@]}"; do
        [[ ${is_used[$pattern]-} ]] || report "$layers: no file has its rank from $pattern"
    done
}

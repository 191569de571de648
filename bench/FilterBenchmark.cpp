// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Keep, Remove and a search in a list of one and of five million rows, compared with ripgrep, which runs the
// same pattern over the exported list and writes the matching lines.
#include "filter/domainFilter.h"
#include "framework/controls/RowStore.h"
#include "framework/regex/RegEx.h"
#include "support/race.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace quilvane;

constexpr std::array domains{ "mail.example.com", "planet.example.org", "school.example.edu", "example.net",
    "telecom.example.de", "post.example.co.uk" };

RowStore makeRows(std::size_t count)
{
    RowStore rows;
    for (std::size_t i = 0; i < count; ++i)
        rows.append("person." + std::to_string(i * 7919 % 1'000'003) + '@' + domains[i % domains.size()]);
    return rows;
}

void writeLines(const RowStore& rows, const std::string& path)
{
    std::ofstream file(path);
    for (std::size_t row = 0; row < rows.size(); ++row)
        file << rows[row] << '\n';
}

std::size_t linesOf(const std::string& path)
{
    std::ifstream file(path);
    return std::size_t(
        std::count(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>(), '\n'));
}

std::size_t keep(const RowStore& rows, DomainFilter kind)
{
    RowFilter filter(RowFilter::Purpose::Keep, std::size_t(kind), {});
    RowStore kept;
    for (std::size_t row = rows.size(); row-- > 0;) {
        if (filter.matches(rows[row]))
            kept.append(rows[row]);
    }
    return kept.size();
}

std::size_t remove(const RowStore& rows, DomainFilter kind)
{
    RowFilter filter(RowFilter::Purpose::Remove, std::size_t(kind), {});
    RowStore list;
    list.append(rows, 0);
    std::vector<unsigned char> stays(list.size(), 1);
    for (std::size_t row = list.size(); row-- > 0;)
        stays[row] = filter.matches(list[row]) ? 0 : 1;
    list.retain(0, stays);
    return list.size();
}

std::size_t search(const RowStore& rows, const std::string& keyword)
{
    RegEx expression;
    expression.setSearchPattern(keyword);
    std::vector<std::size_t> matches;
    rows.appendMatching(expression, 0, rows.size(), matches);
    RowStore found;
    for (const std::size_t row : matches)
        found.append(rows[row]);
    return found.size();
}

} // namespace

int main()
{
    const std::filesystem::path folder = std::filesystem::temp_directory_path();
    const std::string list = folder / "quilvane-bench-list.txt";
    const std::string output = folder / "quilvane-bench-matches.txt";
    const auto ripgrep = [&](const std::string& options, const std::string& pattern) {
        const std::string command
            = "rg --no-config -INai " + options + " -- '" + pattern + "' " + list + " > " + output;
        return std::size_t(std::system(command.c_str()) == 0);
    };
    bool allAgree = true;
    for (const std::size_t count : { std::size_t(1'000'000), std::size_t(5'000'000) }) {
        const RowStore rows = makeRows(count);
        writeLines(rows, list);
        struct Task {
            const char* name;
            std::function<std::size_t()> ours;
            const char* options;
            const char* pattern;
        };
        const Task tasks[] = {
            { "Keep .com", [&] { return keep(rows, DomainFilter::Com); }, "", "@.*\\.com" },
            { "Remove .net", [&] { return remove(rows, DomainFilter::Net); }, "-v", "@.*.net" },
            { "Search 99", [&] { return search(rows, "99"); }, "", "99" },
            { "Search a pattern", [&] { return search(rows, "n\\.[0-9]+7@.*(org|uk)$"); }, "",
                "n\\.[0-9]+7@.*(org|uk)$" },
        };
        for (const Task& task : tasks) {
            std::array contenders{
                Contender{ "ours", task.ours },
                Contender{ "ripgrep", [&] { return ripgrep(task.options, task.pattern); } },
            };
            race(contenders, 3);
            const double ours = contenders[0].fastestSeconds;
            const double theirs = contenders[1].fastestSeconds;
            const bool agree = contenders[0].result == linesOf(output);
            allAgree = allAgree && agree;
            std::printf("%zu rows, %-17s %7.1f ms, ripgrep %7.1f ms; ratio %.2f goal 1 %s%s\n", count,
                task.name, ours * 1e3, theirs * 1e3, ours / theirs, verdict(ours <= theirs),
                agree ? "" : "; DIFFERENT RESULTS");
        }
    }
    std::filesystem::remove(list);
    std::filesystem::remove(output);
    return allAgree ? EXIT_SUCCESS : EXIT_FAILURE;
}
